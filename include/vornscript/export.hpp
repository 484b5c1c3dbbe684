// What a shared library shows.
#pragma once

#define VRN_API [[gnu::visibility("default")]]
