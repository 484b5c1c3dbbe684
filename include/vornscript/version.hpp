// The version of these headers, and of the library that belongs to them. The build reads it here.
#pragma once

#define VRN_VERSION_MAJOR 0
#define VRN_VERSION_MINOR 3
#define VRN_VERSION_PATCH 0

// One number to compare with: 10000 * major + 100 * minor + patch.
#define VRN_VERSION (VRN_VERSION_MAJOR * 10000 + VRN_VERSION_MINOR * 100 + VRN_VERSION_PATCH)

#define VRN_VERSION_TEXT_OF(major, minor, patch) #major "." #minor "." #patch
#define VRN_VERSION_JOIN(major, minor, patch) VRN_VERSION_TEXT_OF(major, minor, patch)

// The version as a string literal, "0.3.0" for example.
#define VRN_VERSION_TEXT VRN_VERSION_JOIN(VRN_VERSION_MAJOR, VRN_VERSION_MINOR, VRN_VERSION_PATCH)
