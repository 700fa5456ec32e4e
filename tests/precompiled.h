// What nearly every test parses: Qt Test, Qt Widgets and the standard headers of threaded code.
// Compiled once per build and reused by every test executable, it saves about a third of each
// test's compile time. A test still includes what it uses; this header only makes that cheap.
// The signals library stays out: GCC forgets, across a precompiled header, the pragma that
// keeps Boost's false "maybe uninitialized" warning quiet at -O1.
#pragma once

#include <QtTest/QtTest>
#include <QtWidgets/QtWidgets>

#include <atomic>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>
