#pragma once

#define TCORE_EXPORT __attribute__((visibility("default")))
