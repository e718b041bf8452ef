// SPDX-License-Identifier: Apache-2.0
// Any text is either refused or a tree whose every node can be read, and which is the same once it has been
// written and read again. The decoder and what the device's store checks texts with are of one opinion.

#include "tests/unit/pps/Tree.h"

#include <cstdlib>
#include <cstring>
#include <memory>

using namespace kelp::pps;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

void check(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

// Memory of just the text's size, so that a step beyond its end is seen.
std::unique_ptr<char[]> copyOf(const std::string &text)
{
    std::unique_ptr<char[]> copy(new char[text.size() + 1]);
    std::memcpy(copy.get(), text.c_str(), text.size() + 1);
    return copy;
}

// Whether an integer below the node that the walk is in is beyond 64 bits: it decodes, and the store does not take it.
bool hasBigInteger(pps_decoder_t *decoder)
{
    bool found = false;
    for (int i = 0; i < pps_decoder_length(decoder); ++i) {
        std::int64_t value = 0;
        check(pps_decoder_goto_index(decoder, i) == PPS_DECODER_OK);
        found |= pps_decoder_get_int64(decoder, nullptr, &value) == PPS_DECODER_DOES_NOT_FIT;
        if (pps_decoder_push(decoder, nullptr) == PPS_DECODER_OK) {
            found |= hasBigInteger(decoder);
            check(pps_decoder_pop(decoder) == PPS_DECODER_OK);
        }
    }
    return found;
}

bool isDecoded(const std::string &text, bool &hasBig)
{
    const auto copy = copyOf(text);
    pps_decoder_t decoder;
    const int error = pps_decoder_initialize(&decoder, copy.get());
    hasBig = !error && hasBigInteger(&decoder);
    pps_decoder_cleanup(&decoder);
    check(error == PPS_DECODER_OK || error == PPS_DECODER_BAD_TEXT);
    return !error;
}

// The text written anew, and its tree.
std::string rewritten(const std::string &text, std::string &tree)
{
    const auto copy = copyOf(text);
    pps_decoder_t decoder;
    pps_encoder_t encoder;
    check(pps_decoder_initialize(&decoder, copy.get()) == PPS_DECODER_OK);
    (void)describeChildren(&decoder); // reads every node
    tree = describeChildren(&decoder, Show::WhatCanBeWritten);
    check(pps_encoder_initialize(&encoder, false) == PPS_ENCODER_OK);
    check(writeChildren(&decoder, &encoder));
    std::string written(pps_encoder_buffer(&encoder), pps_encoder_length(&encoder));
    pps_encoder_cleanup(&encoder);
    pps_decoder_cleanup(&decoder);
    return written;
}

// The store's functions on views whose end is the end of their memory.
bool isGoodInItsOwnMemory(const std::string &text)
{
    const std::unique_ptr<char[]> copy(new char[text.size()]);
    std::memcpy(copy.get(), text.data(), text.size());
    return isGood({copy.get(), text.size()});
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    check(!isGoodInItsOwnMemory(bytes) || bytes.find('\0') == bytes.npos);
    const std::string text = bytes.c_str(); // up to the first NUL
    bool hasBig = false;
    const bool isText = isDecoded(text, hasBig);
    check((isText && !hasBig) == isGoodInItsOwnMemory(text));
    if (isText) {
        std::string tree;
        std::string again;
        const std::string written = rewritten(text, tree);
        check(rewritten(written, again) == written);
        check(again == tree);
    }
    return 0;
}
