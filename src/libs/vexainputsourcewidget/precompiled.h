// The Qt Widgets headers nearly every source of the library parses, compiled once per build.
// Sources still include what they use; this header only makes that cheap. The signals library
// stays out: GCC forgets, across a precompiled header, the pragma that keeps Boost's false
// "maybe uninitialized" warning quiet at -O1.
#pragma once

#include <QtWidgets/QtWidgets>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>
