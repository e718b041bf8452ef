/* SPDX-License-Identifier: Apache-2.0 */
/*
 * The asset selector: which file an application should load for one of its assets, on a screen of a certain size and
 * under a certain theme.
 *
 * An asset is named by its path below the application's assets directory. Its variants stand in the same directory,
 * under the same path below
 *     <width>x<height>/<theme>/    for one screen and one theme,
 *     <width>x<height>/            for one screen,
 *     <theme>/                     for one theme,
 * with width and height in pixels and the theme "bright" or "dark". Of those that exist the first one in this order is
 * selected. A variant is a regular file, or a symbolic link to one; a screen of another size than asked for never
 * counts. The asset's own file, below none of these, is no variant: it is what an application takes when none is found.
 *
 *     const aselector_attribute_t attributes[] = {
 *         {ASELECTOR_SCREEN_WIDTH, 768}, {ASELECTOR_SCREEN_HEIGHT, 1280}, {ASELECTOR_THEME, ASELECTOR_DARK}, {0, 0}};
 *     aselector_context_t *context;
 *     aselector_asset_t *asset;
 *     const char *path;
 *     if (aselector_context_create(attributes, &context) == 0) {
 *         if (aselector_asset_create(context, "images/a.png", "/apps/x/app/native/assets", &asset) == 0) {
 *             if (aselector_asset_get_path(asset, &path) == 0) {
 *                 load(path);
 *             }
 *             aselector_asset_destroy(asset);
 *         }
 *         aselector_context_destroy(context);
 *     }
 *
 * Paths are bytes: no encoding is looked at. No device is needed.
 *
 * Threads: every function may be called from any thread, and contexts and assets used by several at a time; only who
 * destroys one must know that nobody uses it any more.
 *
 * Errors: 0, or -1 with the cause in errno and the output as it was. Besides what is said at each function:
 *   EINVAL  an argument is NULL or out of its range,
 *   ENOMEM  no memory is left.
 */
#ifndef ASELECTOR_ASELECTOR_H
#define ASELECTOR_ASELECTOR_H

#include <stdint.h>

#include <platform/export.h>

PLATFORM_BEGIN_DECLS

/* What an attribute is about. */
enum aselector_attribute_id {
    ASELECTOR_END = 0,           /* ends a list; its value is not looked at */
    ASELECTOR_SCREEN_WIDTH = 1,  /* pixels, at least 1 */
    ASELECTOR_SCREEN_HEIGHT = 2, /* pixels, at least 1 */
    ASELECTOR_THEME = 3          /* enum aselector_theme */
};

/* Values of ASELECTOR_THEME. */
enum aselector_theme { ASELECTOR_BRIGHT = 1, ASELECTOR_DARK = 2 };

/* One property of the device that assets are selected for. */
typedef struct aselector_attribute {
    int32_t id; /* enum aselector_attribute_id */
    int32_t value;
} aselector_attribute_t;

/* What assets are selected for. */
typedef struct aselector_context aselector_context_t;

/* An asset, and what has been selected for it. */
typedef struct aselector_asset aselector_asset_t;

/* Makes a context of a list of attributes, in any order, up to the one with the id ASELECTOR_END; of several with one
 * id the last counts. Without a width or a height no variant for a screen is selected, without a theme none for a
 * theme. The caller ends *context with aselector_context_destroy(). EINVAL also for an unknown id. */
PLATFORM_EXPORT int aselector_context_create(const aselector_attribute_t *attributes,
                                             aselector_context_t **context);

/* Ends a context. Assets made with it stay as they are. NULL is allowed. */
PLATFORM_EXPORT void aselector_context_destroy(aselector_context_t *context);

/* Looks for the variants, in this moment, of the asset at a path relative to an assets directory. The asset need not
 * exist, nor have variants. The caller ends *asset with aselector_asset_destroy(). EINVAL also for an empty directory.
 *   EACCES  the path is absolute, or leads out of the assets directory by its ".." or, in a variant that would be
 *           selected, through a symbolic link; or a directory on the way may not be searched,
 *   ELOOP, ENAMETOOLONG, EIO  as realpath(3) has them: it cannot be told whether a variant exists. */
PLATFORM_EXPORT int aselector_asset_create(const aselector_context_t *context, const char *path,
                                           const char *assets_directory, aselector_asset_t **asset);

/* Sets *path to the selected file: the assets directory as it was given, and the variant's path in it with its "." and
 * ".." resolved. It is the asset's own storage, valid until the asset is destroyed. ENOENT: no variant was found. */
PLATFORM_EXPORT int aselector_asset_get_path(const aselector_asset_t *asset, const char **path);

/* Ends an asset, and with it the path that it has given. NULL is allowed. */
PLATFORM_EXPORT void aselector_asset_destroy(aselector_asset_t *asset);

PLATFORM_END_DECLS

#endif
