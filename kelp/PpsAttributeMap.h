// SPDX-License-Identifier: Apache-2.0
#ifndef KELP_PPSATTRIBUTEMAP_H
#define KELP_PPSATTRIBUTEMAP_H

// The map holds attributes and attributes hold maps: both are declared in one place.
#include <kelp/PpsAttribute.h>

#endif
