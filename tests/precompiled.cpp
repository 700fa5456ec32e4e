// SPDX-License-Identifier: MIT
// The one source of the target that compiles tests/precompiled.h for the test executables.
