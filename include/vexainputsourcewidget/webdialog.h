// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/iinputsourcemgr.h>
#include <vexainputsourcewidget/stwebdescription.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <vexa/widgets/dialog.h>

#include <QString>

#include <cstdint>
#include <memory>

namespace quandel {
class IZQRuntime;
namespace msgcenter {
class IMsgCenterMgr;
} // namespace msgcenter
} // namespace quandel

namespace vexa::inputsource {

/// The modal dialog in which the operator adds a web page source or edits one: its name (at
/// most 20 characters typed), its rendering mode ("native", or "screenshot" where the system
/// can capture windows) and up to 30 tabs, each with a name and an address. The last tab
/// cannot be deleted. A tab address without "http://", "https://" or "file:///" gets
/// "https://" in front; an emptied one, or one with a leading space, gets its previous
/// address back.
///
/// OK (or Enter) asks signalNameEditIsRepeated when the name was changed, refuses two tabs of
/// the same name with the "NameAlreadyExists" notice, then sends the manager one request on
/// the runtime thread, the GUI thread waiting: in edit mode webOperation() with the source's
/// new description (kind 1, code 14), in add mode addInputSources() with one web source
/// (type 9; 1600 x 900 in screenshot mode). Cancel, the close button and Escape close it
/// without a request.
///
/// Load watch: while the dialog exists, a timer ("loadWatchTimer", every 5000 ms) samples the
/// CPU, GPU and memory readings that the manager sends (STWebOperation codes 15 and 16); when
/// the last six samples of one are all above its threshold, a warning goes to the message
/// centre at that tick and at every following one while it stays above. Its action button
/// opens the system's task manager, and is left out where the system has none.
///
/// WebBox creates one dialog without a parent, binds it to its manager and reuses it; the
/// dialog is destroyed when the application object goes. Object names: "webDialog",
/// "webNameLabel", "webNameEdit", "webModeLabel", "webModeBox", "webTabCaption",
/// "webTabCounter", "addTabBtn", "tabListWidget", "webCancelBtn", "webOkBtn",
/// "loadWatchTimer"; in each tab row "tabNameEdit", "tabUrlEdit", "tabDeleteBtn".
/// GUI thread only.
class VEXAINPUTSOURCEWIDGET_EXPORT WebDialog : public vexa::widgets::Dialog
{
    Q_OBJECT

public:
    /// The most tabs a web source has.
    static constexpr int maxTabCount = 30;

    /// An unbound dialog, 500 pixels wide, without tabs until setWebSource() (the counter
    /// reads "(0/30)"), with texts in the current language and the load watch running. Logs
    /// "current system does not supported WGC!!!" once when the system cannot capture windows.
    explicit WebDialog(QWidget* parent = nullptr);

    /// Stops the load watch and drops the manager's notifications, also one under way.
    ~WebDialog() override;

    /// Binds the dialog to `mgr`, whose requests run on `runtime`'s thread (not owned), and
    /// subscribes to its web notifications there (waiting for that). An expired manager logs
    /// "inputSourceMgr is nullptr" and subscribes nothing. Binding again drops the previous
    /// subscription first.
    void setInputSourceMgr(std::weak_ptr<vexa::inputsource::IInputSourceMgr> mgr,
                           quandel::IZQRuntime* runtime);

    /// Drops the subscription and forgets the manager: once it returns, no notification
    /// reaches the dialog and OK logs "inputSourceMgr is nullptr". Does not wait for the
    /// runtime.
    void unsetInputSourceMgr();

    /// The host's message centre, told about load warnings and about a native page open on
    /// several patches. Not owned; may be null, and then nothing is posted.
    void setMsgCenterMgr(quandel::msgcenter::IMsgCenterMgr* msgCenter);

    /// The UI language code ("zh_CN", "en_US", ...), which chooses the home page of new tabs.
    void setLanguageCode(const QString& code);
    QString languageCode() const;

    /// The home pages of new tabs: `simplifiedChinese` for the language code "zh_CN" exactly,
    /// `other` for every other code, the empty one included. By default
    /// "https://www.baidu.com" and "https://www.google.com".
    void setHomePages(const QString& simplifiedChinese, const QString& other);

    /// The home page for `code`.
    QString homePageFor(const QString& code) const;

    /// Fills the dialog for one opening: the source `id` (0 when adding), its description (name,
    /// mode, tabs in their order, current tab index) and whether it is edited (true) or added.
    /// A description without tabs gets one default tab.
    void setWebSource(uint64_t id, const vexa::inputsource::STWebDescription& description,
                      bool edit);

    /// Sets every text and accessible name in the current language, and probes again whether
    /// the system can capture windows, enabling or disabling "screenshot".
    void translateLanguage();

Q_SIGNALS:
    /// Asked through a direct connection on OK when the name differs from the one the dialog
    /// was filled with: true when `name` is already used (the answerer has told the operator);
    /// the dialog then stays open. Unanswered means free.
    bool signalNameEditIsRepeated(const QString& name);

protected:
    /// A press on the dialog's own surface takes the focus from the field being typed in, so
    /// that its editing finishes before anything else happens.
    void mousePressEvent(QMouseEvent* event) override;

private:
    class Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::inputsource
