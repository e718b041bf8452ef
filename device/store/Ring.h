// SPDX-License-Identifier: Apache-2.0
// A list through its members: joining, leaving and handing all members over to another ring cost the same
// however many there are, and allocate nothing. It is what keeps a change's cost apart from the number of
// subscribers.
#pragma once

namespace kelp::device {

class Ring
{
public:
    // In one ring at most; leaves it when destroyed.
    class Node
    {
    public:
        Node() = default;
        Node(const Node &) = delete;
        Node &operator=(const Node &) = delete;
        ~Node() { leave(); }

        bool isIn() const { return _next != this; }

        void leave()
        {
            _previous->_next = _next;
            _next->_previous = _previous;
            _previous = _next = this;
        }

    private:
        friend class Ring;
        Node *_previous = this;
        Node *_next = this;
    };

    bool isEmpty() const { return !_head.isIn(); }
    Node *first() { return isEmpty() ? nullptr : _head._next; }

    // Takes the node out of the ring it is in, and makes it the last of this one.
    void append(Node &node)
    {
        node.leave();
        node._previous = _head._previous;
        node._next = &_head;
        _head._previous->_next = &node;
        _head._previous = &node;
    }

    // Makes all of another ring's nodes the last ones of this.
    void appendAll(Ring &other)
    {
        if (other.isEmpty()) {
            return;
        }
        Node &first = *other._head._next;
        Node &last = *other._head._previous;
        other._head._next = other._head._previous = &other._head;
        first._previous = _head._previous;
        last._next = &_head;
        _head._previous->_next = &first;
        _head._previous = &last;
    }

private:
    Node _head;
};

} // namespace kelp::device
