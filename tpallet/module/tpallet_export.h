#pragma once

// The module is built with hidden visibility; what the host and the tests call is marked here.
#define TPALLET_EXPORT __attribute__((visibility("default")))
