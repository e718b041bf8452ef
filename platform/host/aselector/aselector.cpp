// SPDX-License-Identifier: Apache-2.0
// The C functions of aselector.h. Contexts and assets never change after they are made, which is what lets threads
// share them.

#include "AssetsDirectory.h"
#include "DeviceTraits.h"
#include "platform/host/Result.h"

#include <aselector/aselector.h>

#include <memory>
#include <string>

using namespace kelp::platform;

constexpr int FAILURE = -1; // the result of these functions
static_assert(TARN_FAILURE == FAILURE);

struct aselector_context {
    DeviceTraits device;
};

struct aselector_asset {
    std::string path; // empty: no variant
};

int aselector_context_create(const aselector_attribute_t *attributes, aselector_context_t **context)
{
    return resultOf([=] {
        if (!attributes || !context) {
            return EINVAL;
        }
        auto made = std::make_unique<aselector_context>();
        if (const int error = made->device.read(attributes)) {
            return error;
        }
        *context = made.release();
        return 0;
    });
}

void aselector_context_destroy(aselector_context_t *context)
{
    const std::unique_ptr<aselector_context> ended(context);
}

int aselector_asset_create(const aselector_context_t *context, const char *path, const char *assets_directory,
                           aselector_asset_t **asset)
{
    return resultOf([=] {
        if (!context || !path || !assets_directory || !*assets_directory || !asset) {
            return EINVAL;
        }
        auto made = std::make_unique<aselector_asset>();
        const AssetsDirectory directory(assets_directory);
        if (const int error = directory.find(path, context->device.variantDirectories(), made->path)) {
            return error;
        }
        *asset = made.release();
        return 0;
    });
}

int aselector_asset_get_path(const aselector_asset_t *asset, const char **path)
{
    return resultOf([=] {
        if (!asset || !path) {
            return EINVAL;
        }
        if (asset->path.empty()) {
            return ENOENT;
        }
        *path = asset->path.c_str();
        return 0;
    });
}

void aselector_asset_destroy(aselector_asset_t *asset)
{
    const std::unique_ptr<aselector_asset> ended(asset);
}
