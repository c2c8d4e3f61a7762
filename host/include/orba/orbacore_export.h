#pragma once

#define ORBACORE_EXPORT __attribute__((visibility("default")))
