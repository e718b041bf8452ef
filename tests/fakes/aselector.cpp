// SPDX-License-Identifier: Apache-2.0
// The C functions of aselector.h on the recording platform, for one context and one asset at a time. The asset has the
// variant whose path the test has set for aselector_asset_get_path(), and none without.

#include "Recorder.h"

#include <aselector/aselector.h>

using namespace kelp::test;

struct aselector_context {
} s_context;

struct aselector_asset {
    std::unique_ptr<char, decltype(&std::free)> path{nullptr, std::free};
} s_asset;

int aselector_context_create(const aselector_attribute_t *attributes, aselector_context_t **context)
{
    std::string list;
    for (; attributes->id != ASELECTOR_END; ++attributes) {
        list += (list.empty() ? "" : ", ") + listed(attributes->id) + '=' + listed(attributes->value);
    }
    *context = &s_context;
    return asked(__func__, list);
}

int aselector_asset_create(const aselector_context_t *, const char *path, const char *assets_directory,
                           aselector_asset_t **asset)
{
    s_asset.path.reset(handedOut("aselector_asset_get_path"));
    *asset = &s_asset;
    return asked(__func__, quoted(path), quoted(assets_directory));
}

int aselector_asset_get_path(const aselector_asset_t *asset, const char **path)
{
    *path = asset->path.get();
    return static_cast<int>(note(__func__, "", true).value_or(*path ? 0 : -1));
}

void aselector_asset_destroy(aselector_asset_t *)
{
    told(__func__);
}

void aselector_context_destroy(aselector_context_t *)
{
    told(__func__);
}
