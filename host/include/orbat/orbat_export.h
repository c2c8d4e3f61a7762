#pragma once

#define ORBAT_EXPORT __attribute__((visibility("default")))
