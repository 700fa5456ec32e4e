// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/inputsourcemetatypes.h>

#include <cstdint>
#include <map>
#include <mutex>
#include <vector>

namespace vexa::inputsource {

void registerMetaTypes()
{
    static std::once_flag once;
    std::call_once(once, [] {
        // Queued invocations name their argument types as text, so each type is registered
        // under every spelling the library's slots and Q_ARG calls use; Qt normalises const
        // and reference away, so "const STInputSource&" finds "STInputSource".
        qRegisterMetaType<uint64_t>("uint64_t");
        qRegisterMetaType<std::vector<uint64_t>>("std::vector<uint64_t>");
        qRegisterMetaType<STInputSource>("STInputSource");
        qRegisterMetaType<std::vector<STInputSource>>("std::vector<STInputSource>");
        qRegisterMetaType<STWebOperation>("STWebOperation");
        qRegisterMetaType<vexa::STResourceRenamedModel>("STResourceRenamedModel");
        qRegisterMetaType<std::vector<vexa::STResourceRenamedModel>>(
            "std::vector<STResourceRenamedModel>");
        qRegisterMetaType<quandel::CaptResolutionsInfo>("quandel::CaptResolutionsInfo");
        qRegisterMetaType<std::shared_ptr<quandel::resource::IResource>>(
            "std::shared_ptr<IResource>");
        qRegisterMetaType<std::shared_ptr<quandel::resource::IResource>>(
            "std::shared_ptr<Resource>");
        qRegisterMetaType<std::shared_ptr<zq::mediacore::IMeta>>(
            "std::shared_ptr<zq::mediacore::IMeta>");
        qRegisterMetaType<MetaQueryResult>(
            "std::tuple<std::shared_ptr<zq::mediacore::IMeta>,bool>");
        // The arguments of InputSourceBox::signalMgrSettingFinished, for hosts that connect to it
        // across threads or watch it with QSignalSpy.
        qRegisterMetaType<std::weak_ptr<IInputSourceMgr>>(
            "std::weak_ptr<vexa::inputsource::IInputSourceMgr>");
        qRegisterMetaType<quandel::IZQRuntime*>("quandel::IZQRuntime*");
        // The maps travel inside a QVariant; registering them through their template also
        // registers the conversion that lets a QVariant holding one be iterated.
        qRegisterMetaType<std::map<uint64_t, bool>>("std::map<uint64_t, bool>");
        qRegisterMetaType<std::map<uint64_t, int>>("std::map<uint64_t, int>");
    });
}

} // namespace vexa::inputsource
