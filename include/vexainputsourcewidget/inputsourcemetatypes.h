// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/iinputsourcemgr.h>
#include <vexainputsourcewidget/stinputsource.h>
#include <vexainputsourcewidget/stresourcerenamedmodel.h>
#include <vexainputsourcewidget/stweboperation.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <quandel/captresolutionsinfo.h>
#include <quandel/resource/iresource.h>
#include <quandel/runtime/izqruntime.h>
#include <zq/mediacore/imeta.h>

#include <QMetaType>

#include <memory>
#include <tuple>

namespace vexa::inputsource {

/// What a tile asks its box for when a drag starts: the source's media description and
/// whether it is valid.
using MetaQueryResult = std::tuple<std::shared_ptr<zq::mediacore::IMeta>, bool>;

/// Registers every record and container that crosses threads inside queued calls under the
/// plain names the library's queued invocations use ("STInputSource", "uint64_t",
/// "std::shared_ptr<IResource>", "std::map<uint64_t, bool>", ...). Does the work once per
/// process; any later call returns at once. Safe to call from several threads and places.
VEXAINPUTSOURCEWIDGET_EXPORT void registerMetaTypes();

} // namespace vexa::inputsource

Q_DECLARE_METATYPE(vexa::inputsource::STInputSource)
Q_DECLARE_METATYPE(vexa::inputsource::STWebOperation)
Q_DECLARE_METATYPE(vexa::STResourceRenamedModel)
Q_DECLARE_METATYPE(quandel::CaptResolutionsInfo)
Q_DECLARE_METATYPE(std::shared_ptr<quandel::resource::IResource>)
Q_DECLARE_METATYPE(std::shared_ptr<zq::mediacore::IMeta>)
Q_DECLARE_METATYPE(vexa::inputsource::MetaQueryResult)
Q_DECLARE_METATYPE(std::weak_ptr<vexa::inputsource::IInputSourceMgr>)
Q_DECLARE_METATYPE(quandel::IZQRuntime*)
