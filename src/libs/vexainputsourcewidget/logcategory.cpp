// SPDX-License-Identifier: MIT
#include "logcategory.h"

namespace vexa::inputsource {

Q_LOGGING_CATEGORY(lcInputSource, "vexa.inputsource")

} // namespace vexa::inputsource
