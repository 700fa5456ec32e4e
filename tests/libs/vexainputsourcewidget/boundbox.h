// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/inputsourceitem.h>

#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/testing/fakeinputsourcemgr.h>
#include <vexainputsourcewidget/testing/warningrecorder.h>

#include <quandel/resource/valueresource.h>
#include <quandel/runtime/zqruntime.h>
#include <zq/mediacore/valuemeta.h>

#include <QCoreApplication>

#include <memory>
#include <optional>
#include <string>
#include <vector>

using quandel::resource::EnResourceType;

/// A source as a host keeps it: a resource with a media description of `type`, unless
/// `withMeta` is false.
inline std::shared_ptr<quandel::resource::ValueResource>
makeSource(uint64_t id, EnResourceType type, zq::mediacore::MetaValues values = {},
           bool withMeta = true)
{
    if (values.name.empty()) {
        values.name = "Source " + std::to_string(id);
    }
    values.resourceType = type;
    auto resource = std::make_shared<quandel::resource::ValueResource>(id, type, values.name);
    if (withMeta) {
        resource->setMeta(std::make_shared<zq::mediacore::ValueMeta>(std::move(values)));
    }
    return resource;
}

/// The warnings the project's code logged: those carry their source file, while Qt's own (the
/// offscreen platform's notes, say) come without one in a release build of Qt.
inline std::vector<vexa::testing::LoggedMessage>
ownWarnings(const vexa::testing::WarningRecorder& recorder)
{
    std::vector<vexa::testing::LoggedMessage> own;
    for (const vexa::testing::LoggedMessage& message : recorder.messages()) {
        if (message.type == QtWarningMsg && !message.file.isEmpty()) {
            own.push_back(message);
        }
    }
    return own;
}

/// A box bound to a manager double on a real runtime thread, shown on screen. `Box` is
/// InputSourceBox or one of the kinds derived from it, which fix their own resource type.
template <typename Box>
struct BoundBoxOf
{
    explicit BoundBoxOf(std::optional<EnResourceType> type = std::nullopt)
        : mgr(std::make_shared<vexa::testing::FakeInputSourceMgr>(&runtime))
    {
        if (type) {
            box.setResourceType(*type);
        }
        box.setZQRuntime(&runtime);
        box.setInputSourceMgr(mgr);
        box.resize(800, 600);
        box.show();
    }

    ~BoundBoxOf()
    {
        if (!box.inputSourceMgr().expired()) {
            box.unsetInputSourceMgr();
        }
    }

    /// Fires signalResourcesAdded with `resources` on the runtime thread and lets the box handle
    /// the queued calls.
    void add(const std::vector<vexa::inputsource::IInputSourceMgr::ResourcePtr>& resources)
    {
        mgr->fireOnRuntime(
            [&resources](auto& manager) { manager.signalResourcesAdded(resources, {}); });
        settle();
    }

    /// Adds sources of the box's own type with these ids.
    void addOwn(const std::vector<uint64_t>& ids)
    {
        std::vector<vexa::inputsource::IInputSourceMgr::ResourcePtr> resources;
        for (const uint64_t id : ids) {
            resources.push_back(makeSource(id, box.resourceType()));
            known.push_back(resources.back());
        }
        mgr->setResources(known);
        add(resources);
    }

    /// Lets the GUI thread run what the runtime queued so far.
    static void settle()
    {
        // Everything is queued before fireOnRuntime returns; twice, because a handled call may
        // queue another (a repaint, a deferred delete).
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }

    vexa::inputsource::InputSourceItem* tile(uint64_t id) { return box.findItem(id); }

    quandel::ZQRuntime runtime;
    std::shared_ptr<vexa::testing::FakeInputSourceMgr> mgr;
    std::vector<vexa::inputsource::IInputSourceMgr::ResourcePtr> known;
    Box box;
};

/// A plain box of one type, bound and shown.
struct BoundBox : BoundBoxOf<vexa::inputsource::InputSourceBox>
{
    explicit BoundBox(EnResourceType type = EnResourceType::NetworkStream)
        : BoundBoxOf(type)
    {}
};
