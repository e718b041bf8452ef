# SPDX-License-Identifier: Apache-2.0
# Finds the Qt that KELP_QT names. Targets link Qt::Core, whatever its major version.

if(NOT KELP_QT MATCHES "^[56]$")
    message(FATAL_ERROR "KELP_QT is \"${KELP_QT}\": set it to 5 or 6")
endif()
if(KELP_QT EQUAL 5)
    find_package(Qt5 5.15 REQUIRED COMPONENTS Core)
    set(KELP_LIBRARY_NAME kelp)
else()
    find_package(Qt6 6.4 REQUIRED COMPONENTS Core)
    set(KELP_LIBRARY_NAME kelp-qt6)
endif()
if(KELP_TESTS)
    find_package(Qt${KELP_QT} REQUIRED COMPONENTS Test)
endif()
