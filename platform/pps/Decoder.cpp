// SPDX-License-Identifier: Apache-2.0
// The decoder's C functions: a whole tree made at once, in one block of memory, and a walk over it.
#include "NodeBlock.h"
#include "Survey.h"
#include "TextReader.h"
#include "Tree.h"

#include <pps/pps.h>

#include <cstring>
#include <limits>
#include <memory>
#include <new>

using namespace kelp::pps;

namespace {

constexpr std::size_t MOST_TEXT =
    std::numeric_limits<int>::max();                   // the longest text; its offsets and counts fit
constexpr std::size_t MOST_LEVELS = PPS_MAX_DEPTH + 2; // the root and an object around an attribute

// What stands where no child is current.
constexpr Node NONE = {NO_NAME, PPS_TYPE_NONE, 0, Number::Kind::Integer, {}};

struct GiveBack {
    void operator()(std::byte *block) const { giveBlock(block); }
};
using Block = std::unique_ptr<std::byte, GiveBack>;

// The head of the block that a decoder holds; the nodes follow it, and then the indices of the containers
// that the walk is in, without the innermost.
struct Walk {
    const Node *current;
    const Node *children; // of the container that the walk is in
    std::uint32_t count;
    std::uint32_t level;
    const char *text;
    const Node *nodes;
    Offset *path;
    Offset container;

    void enter(Offset index)
    {
        container = index;
        children = nodes + nodes[index].children.first;
        count = nodes[index].children.count;
    }
    void select(std::uint32_t index) { current = index < count ? children + index : &NONE; }
    // Out of line, for those who read by name only.
    [[gnu::noinline]] const Node *find(const char *name) const
    {
        for (const Node *child = children; child != children + count; ++child) {
            if (child->name != NO_NAME && std::strcmp(text + child->name, name) == 0) {
                return child;
            }
        }
        return &NONE;
    }
};

Walk *walkOf(const pps_decoder_t *decoder)
{
    return decoder ? static_cast<Walk *>(decoder->state) : nullptr;
}

const Node &nodeOf(const pps_decoder_t *decoder, const char *name)
{
    const Walk *const walk = walkOf(decoder);
    return *(!walk ? &NONE : !name ? walk->current : walk->find(name));
}

// Why a node is not of the type that is asked for.
pps_decoder_error_t mismatch(const Node &node)
{
    return node.type == PPS_TYPE_NONE ? PPS_DECODER_NOT_FOUND : PPS_DECODER_WRONG_TYPE;
}

// An integer of any type that the number's node may fit.
template <typename Integer>
pps_decoder_error_t getInteger(const pps_decoder_t *decoder, const char *name, Integer *value)
{
    if (!walkOf(decoder) || !value) {
        return PPS_DECODER_BAD_ARGUMENT;
    }
    const Node &node = nodeOf(decoder, name);
    if (node.type != PPS_TYPE_NUMBER || node.numberKind == Number::Kind::Real) {
        return mismatch(node);
    }
    if (node.numberKind != Number::Kind::Integer || node.integer < std::numeric_limits<Integer>::min() ||
        node.integer > std::numeric_limits<Integer>::max()) {
        return PPS_DECODER_DOES_NOT_FIT;
    }
    *value = static_cast<Integer>(node.integer);
    return PPS_DECODER_OK;
}

// Memory for a text's tree, or null, with errno as it was.
Block makeBlock(std::size_t nodes)
{
    return Block(
        takeBlock(sizeof(Walk) + nodes * sizeof(Node) + std::min(nodes, MOST_LEVELS) * sizeof(Offset)));
}

} // namespace

pps_decoder_error_t pps_decoder_initialize(pps_decoder_t *decoder, char *text)
{
    if (!decoder) {
        return PPS_DECODER_BAD_ARGUMENT;
    }
    decoder->state = nullptr;
    if (!text) {
        return PPS_DECODER_BAD_ARGUMENT;
    }
    const std::size_t length = std::strlen(text);
    if (length > MOST_TEXT) {
        return PPS_DECODER_NO_MEMORY;
    }
    const Survey found = survey({text, length});
    if (!found.isAscii && !isUtf8({text, length})) {
        return PPS_DECODER_BAD_TEXT;
    }
    Block block = makeBlock(found.nodes);
    if (!block) {
        return PPS_DECODER_NO_MEMORY;
    }
    auto *const nodes = reinterpret_cast<Node *>(block.get() + sizeof(Walk));
    TreeBuilder builder(nodes, found.nodes);
    if (!TextReader(builder, text, length).read()) {
        return PPS_DECODER_BAD_TEXT;
    }
    auto *const walk = new (block.get()) Walk{};
    walk->text = text;
    walk->nodes = nodes;
    walk->path = reinterpret_cast<Offset *>(nodes + found.nodes);
    walk->enter(0);
    walk->select(0);
    decoder->state = block.release();
    return PPS_DECODER_OK;
}

void pps_decoder_cleanup(pps_decoder_t *decoder)
{
    if (decoder) {
        const Block block(static_cast<std::byte *>(decoder->state));
        decoder->state = nullptr;
    }
}

int pps_decoder_length(pps_decoder_t *decoder)
{
    const Walk *const walk = walkOf(decoder);
    return walk ? static_cast<int>(walk->count) : -1;
}

pps_decoder_error_t pps_decoder_goto_index(pps_decoder_t *decoder, int index)
{
    Walk *const walk = walkOf(decoder);
    if (!walk) {
        return PPS_DECODER_BAD_ARGUMENT;
    }
    walk->select(static_cast<std::uint32_t>(index)); // a negative one is beyond every count
    return walk->current == &NONE ? PPS_DECODER_NOT_FOUND : PPS_DECODER_OK;
}

const char *pps_decoder_name(pps_decoder_t *decoder)
{
    const Node &node = nodeOf(decoder, nullptr);
    return node.name == NO_NAME ? nullptr : walkOf(decoder)->text + node.name;
}

pps_node_type_t pps_decoder_type(pps_decoder_t *decoder, const char *name)
{
    return static_cast<pps_node_type_t>(nodeOf(decoder, name).type);
}

int pps_decoder_flags(pps_decoder_t *decoder, const char *name)
{
    return nodeOf(decoder, name).flags;
}

bool pps_decoder_is_integer(pps_decoder_t *decoder, const char *name)
{
    const Node &node = nodeOf(decoder, name);
    return node.type == PPS_TYPE_NUMBER && node.numberKind != Number::Kind::Real;
}

pps_decoder_error_t pps_decoder_get_bool(pps_decoder_t *decoder, const char *name, bool *value)
{
    if (!walkOf(decoder) || !value) {
        return PPS_DECODER_BAD_ARGUMENT;
    }
    const Node &node = nodeOf(decoder, name);
    if (node.type != PPS_TYPE_BOOL) {
        return mismatch(node);
    }
    *value = node.truth;
    return PPS_DECODER_OK;
}

pps_decoder_error_t pps_decoder_get_int(pps_decoder_t *decoder, const char *name, int *value)
{
    return getInteger(decoder, name, value);
}

pps_decoder_error_t pps_decoder_get_int64(pps_decoder_t *decoder, const char *name, int64_t *value)
{
    return getInteger(decoder, name, value);
}

pps_decoder_error_t pps_decoder_get_double(pps_decoder_t *decoder, const char *name, double *value)
{
    if (!walkOf(decoder) || !value) {
        return PPS_DECODER_BAD_ARGUMENT;
    }
    const Node &node = nodeOf(decoder, name);
    if (node.type != PPS_TYPE_NUMBER) {
        return mismatch(node);
    }
    *value = node.numberKind == Number::Kind::Integer ? static_cast<double>(node.integer) : node.real;
    return PPS_DECODER_OK;
}

pps_decoder_error_t pps_decoder_get_string(pps_decoder_t *decoder, const char *name, const char **value)
{
    if (!walkOf(decoder) || !value) {
        return PPS_DECODER_BAD_ARGUMENT;
    }
    const Node &node = nodeOf(decoder, name);
    if (node.type != PPS_TYPE_STRING) {
        return mismatch(node);
    }
    *value = walkOf(decoder)->text + node.string;
    return PPS_DECODER_OK;
}

pps_decoder_error_t pps_decoder_push(pps_decoder_t *decoder, const char *name)
{
    Walk *const walk = walkOf(decoder);
    if (!walk) {
        return PPS_DECODER_BAD_ARGUMENT;
    }
    const Node &node = nodeOf(decoder, name);
    if (node.type != PPS_TYPE_ARRAY && node.type != PPS_TYPE_OBJECT) {
        return mismatch(node);
    }
    walk->path[walk->level++] = walk->container;
    walk->enter(static_cast<Offset>(&node - walk->nodes));
    walk->select(0);
    return PPS_DECODER_OK;
}

pps_decoder_error_t pps_decoder_pop(pps_decoder_t *decoder)
{
    Walk *const walk = walkOf(decoder);
    if (!walk) {
        return PPS_DECODER_BAD_ARGUMENT;
    }
    if (walk->level == 0) {
        return PPS_DECODER_NOT_FOUND;
    }
    const Offset left = walk->container;
    walk->enter(walk->path[--walk->level]);
    walk->current = walk->nodes + left;
    return PPS_DECODER_OK;
}
