// SPDX-License-Identifier: Apache-2.0
// The tree that a text is decoded into: nodes of 16 bytes in one array, the children of each side by side.
// Built by the readers of lines and values, walked by the decoder.
#pragma once

#include "Number.h"

#include <pps/pps.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace kelp::pps {

using Offset = std::uint32_t; // from the text's or the array's beginning

constexpr Offset NO_NAME = UINT32_MAX;

struct Node {
    struct Range {
        Offset first;
        std::uint32_t count;
    };

    Offset name;             // in the text, or NO_NAME
    std::uint8_t type;       // of pps_node_type_t
    std::uint8_t flags;      // of enum pps_flags
    Number::Kind numberKind; // PPS_TYPE_NUMBER
    union {
        bool truth;           // PPS_TYPE_BOOL
        std::int64_t integer; // PPS_TYPE_NUMBER of kind Integer
        double real;          // PPS_TYPE_NUMBER of the other kinds
        Offset string;        // PPS_TYPE_STRING, in the text
        Range children;       // PPS_TYPE_ARRAY, PPS_TYPE_OBJECT, in the array
    };
};
static_assert(sizeof(Node) == 16);

// Fills an array that the caller has made large enough for all nodes. What is still open stands at its
// beginning, each container followed by its children so far; a container that is closed moves its children to
// the array's end.
class TreeBuilder
{
public:
    TreeBuilder(Node *nodes, std::size_t capacity) : _nodes(nodes), _top(nodes), _moved(nodes + capacity)
    {
        add(PPS_TYPE_OBJECT, NO_NAME);
        _open = _nodes;
    }

    Node &add(pps_node_type_t type, Offset name)
    {
        Node &node = *_top++;
        node = {name, static_cast<std::uint8_t>(type), 0, Number::Kind::Integer, {}};
        return node;
    }
    Node &open(pps_node_type_t type, Offset name)
    {
        Node &node = add(type, name);
        node.children.first =
            static_cast<Offset>(_open - _nodes); // until it is closed: the container it is in
        _open = &node;
        return node;
    }
    void close()
    {
        Node *const container = _open;
        _open = _nodes + container->children.first;
        const auto count = static_cast<std::uint32_t>(_top - (container + 1));
        _moved = std::move_backward(container + 1, _top, _moved);
        _top = container + 1;
        container->children = {static_cast<Offset>(_moved - _nodes), count};
    }

    Node &container() { return *_open; }
    Node &next() { return *_top; } // the node that is added next
    bool isEmpty() const { return _top == _open + 1; }

private:
    Node *_nodes;
    Node *_open = nullptr;
    Node *_top;
    Node *_moved;
};

} // namespace kelp::pps
