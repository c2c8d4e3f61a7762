#pragma once

#define ORBADWEL_EXPORT __attribute__((visibility("default")))
