// SPDX-License-Identifier: MIT
// The Qt Widgets and signals headers nearly every source of the library parses, compiled once
// per build. Sources still include what they use; this header only makes that cheap.
#pragma once

#include <QtWidgets/QtWidgets>

#include <boost/signals2/connection.hpp>
#include <boost/signals2/signal.hpp>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>
