// SPDX-License-Identifier: MIT
#include <quandel/resource/iresource.h>

namespace quandel::resource {

// Defined here so that the vtable and type information live in this library only, and a
// dynamic_cast across library boundaries sees one IResource.
IResource::~IResource() = default;

} // namespace quandel::resource
