// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/stinputsource.h>
#include <vexainputsourcewidget/stresourcerenamedmodel.h>
#include <vexainputsourcewidget/stweboperation.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <quandel/captresolutionsinfo.h>
#include <quandel/resource/iresource.h>
#include <quandel/resource/stresouceextracted.h>
#include <sigslot/signal.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace vexa::inputsource {

/// The host's manager of input sources: it owns the sources, tells the panel about every
/// change through its signals, and carries out the panel's requests.
///
/// Threads: the manager fires every signal on the host's runtime thread. State-changing
/// requests reach it on the runtime thread too (the panel posts them there and waits); the
/// read-only queries getResources(), generateStreamingName(), getResourceById() and
/// isNameRepeated(), and refreshCaptureDevices(), may also be called on the GUI thread, so the
/// host makes those safe to call from there.
///
/// Ownership: the host owns the manager through std::shared_ptr and hands widgets a
/// std::weak_ptr; widgets lock it for each use and never keep it alive beyond a request.
/// Before the manager goes, the host calls unsetInputSourceMgr() on the panel.
class VEXAINPUTSOURCEWIDGET_EXPORT IInputSourceMgr
{
public:
    using ResourcePtr = std::shared_ptr<quandel::resource::IResource>;

    virtual ~IInputSourceMgr();

    /// Sources were added: their resources, and the records they were created from.
    sigslot::signal<const std::vector<ResourcePtr>&, const std::vector<STInputSource>&>
        signalResourcesAdded;
    /// The media description of a resource was extracted; the resource now carries its meta.
    sigslot::signal<ResourcePtr, const quandel::resource::STResouceExtracted&>
        signalResourceExtracted;
    /// Extracting the media description of a resource failed.
    sigslot::signal<ResourcePtr, const quandel::resource::STResouceExtracted&>
        signalResourceExtractFailed;
    /// The set of previewed sources changed; each record's preview flag tells its state.
    sigslot::signal<const std::vector<STInputSource>&> signalPreviewedChanged;
    /// Sources went online (true) or offline (false); the int is the host's reason code.
    sigslot::signal<const std::map<uint64_t, bool>&, int> signalOnlineStatusChanged;
    /// Every source was removed.
    sigslot::signal<> signalResourcesCleared;
    /// The host reordered its sources; the ids in their new order.
    sigslot::signal<const std::vector<uint64_t>&> signalResourcesReordered;
    /// A source stopped delivering pictures.
    sigslot::signal<uint64_t> signalResourceLost;
    /// A lost source delivers pictures again.
    sigslot::signal<uint64_t> signalResourceRecovered;
    /// The capture format of a capture device changed.
    sigslot::signal<const STInputSource&> signalCaptResolutionUpdated;
    /// Seconds each source has been online.
    sigslot::signal<const std::map<uint64_t, int>&> signalOnlineTimeUpdated;
    /// Sources were removed.
    sigslot::signal<const std::vector<uint64_t>&> signalResourcesDeleted;
    /// A source was renamed; a receiver may set the flag to tell that the name already exists.
    sigslot::signal<const vexa::STResourceRenamedModel&, bool&> signalResourceRenamed;
    /// The NDI senders on the network, one record each.
    sigslot::signal<const std::vector<vexa::STResourceRenamedModel>&> signalNdiSourcesUpdated;
    /// The resolution or frame rate a source delivers changed.
    sigslot::signal<const STInputSource&> signalResolutionUpdated;
    /// The host's list of local capture devices changed.
    sigslot::signal<const std::vector<STInputSource>&> signalCaptureDevicesChanged;
    /// The translated name of network streams changed.
    sigslot::signal<const std::string&> signalStreamingTextChanged;
    /// A capture device refused the format it was asked for.
    sigslot::signal<const quandel::CaptResolutionsInfo&> signalResolutionError;
    /// Something about web page sources changed (see STWebOperation::Code).
    sigslot::signal<const STWebOperation&> signalWebInfoChanged;

    /// Creates sources from the records. Runtime thread.
    virtual void addInputSources(const std::vector<STInputSource>& sources) = 0;
    /// Removes the sources with these ids. Runtime thread.
    virtual void deleteInputSources(const std::vector<uint64_t>& ids) = 0;
    /// Opens (enable true) or closes the previews of the sources whose ids the records carry;
    /// each record's preview flag tells the state asked for that source. Runtime thread.
    virtual void previewInputSources(const std::vector<STInputSource>& sources, bool enable) = 0;
    /// Every source, as resources. GUI or runtime thread.
    virtual std::vector<ResourcePtr> getResources() = 0;
    /// The translated word for network streams, used in the names the manager generates.
    /// Runtime thread.
    virtual void setStreamingText(const std::string& text) = 0;
    /// A free name for a new network stream. GUI or runtime thread.
    virtual std::string generateStreamingName() = 0;
    /// The resource of source `id`; empty when there is none. GUI or runtime thread.
    virtual ResourcePtr getResourceById(uint64_t id) = 0;
    /// Renames a source; false when the name was refused. Runtime thread.
    virtual bool renameInputSource(const vexa::STResourceRenamedModel& model) = 0;
    /// Names the receiver of an NDI sender. Runtime thread.
    virtual void renameNdiReceiver(const vexa::STResourceRenamedModel& model) = 0;
    /// Looks for NDI senders again; the result arrives as signalNdiSourcesUpdated. Runtime
    /// thread.
    virtual void refreshNdiSources() = 0;
    /// True when a source already has the name (UTF-8). GUI or runtime thread.
    virtual bool isNameRepeated(const std::string& name) = 0;
    /// Carries out an operation on a web page source. Runtime thread.
    virtual void webOperation(const STWebOperation& operation) = 0;
    /// Switches a capture device (record id) to the format the record's first capture format
    /// gives. Runtime thread.
    virtual void changeCaptResolution(const STInputSource& source) = 0;
    /// Reads the local capture devices again. GUI thread.
    virtual void refreshCaptureDevices() = 0;

protected:
    IInputSourceMgr();
    IInputSourceMgr(const IInputSourceMgr&) = delete;
    IInputSourceMgr& operator=(const IInputSourceMgr&) = delete;
};

} // namespace vexa::inputsource
