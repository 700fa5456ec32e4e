// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/iinputsourcemgr.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <vexa/layout/floatingitemwidget.h>

#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <string>

namespace quandel {
class IZQRuntime;
namespace msgcenter {
class IMsgCenterMgr;
} // namespace msgcenter
} // namespace quandel

namespace zq::mediacore {
class IFrame;
} // namespace zq::mediacore

namespace vexa::inputsource {

/// The input sources panel a host embeds: a floating panel (identifier
/// "vexa.inputsourcewidget") holding the four category boxes in a scroll area, in the order
/// capture cards ("captureCardBox"), network streams ("streamingBox"), NDI sources ("ndiBox")
/// and web pages ("webBox"), and a context menu ("inputSourceMenu") to add a stream, an NDI
/// source or a web page, or to clear every source.
///
/// The panel owns no source data. Each setter hands what it is given to the boxes, which bind
/// to the manager, show its sources as tiles and send its requests; the panel adds exclusive
/// selection across the boxes and "clear all".
///
/// Set-up, on the GUI thread, in any order: setZQRuntime(), setMsgCenterMgr(),
/// setLoadingPath(), setInputSourceStyleSheet(), loadLanguageFiles(); and last
/// setInputSourceMgr(). Shut-down: stop calling updateFrame(), call unsetInputSourceMgr(), then
/// destroy the panel; the runtime outlives the panel. docs/integration.md walks through it.
///
/// Keyboard: the Menu key and Shift+F10 open the context menu while the panel or one of its
/// children has the focus; Tab walks the boxes in the order they are shown.
///
/// Ownership: the boxes, the menu and the scroll area are the panel's children. The dialogs of
/// the stream, NDI and web boxes are windows of their own, kept until the application object
/// goes. The runtime, the message centre and the manager stay the host's.
///
/// Threads: every member runs on the GUI thread, except updateFrame().
class VEXAINPUTSOURCEWIDGET_EXPORT InputSourceWidget : public vexa::layout::FloatingItemWidget
{
    Q_OBJECT

public:
    /// The panel with its four empty, unbound boxes and its menu, titled with the untranslated
    /// key "InputSource" until the first translateLanguage().
    explicit InputSourceWidget(QWidget* parent = nullptr);

    /// Destroys the panel and its boxes. A dialog or menu of the panel that is open closes, and
    /// the code that opened it returns without touching the panel.
    ~InputSourceWidget() override;

    /// Binds the boxes to `mgr` (NDI, capture card, stream, web; each waits for the runtime
    /// thread), keeps it, and hands the manager the translated "Streaming" through
    /// setStreamingText() on the runtime thread. An expired pointer still reaches every box;
    /// the panel then logs "nullptr == inputSourceMgr" once and sends nothing.
    void setInputSourceMgr(std::weak_ptr<IInputSourceMgr> mgr);

    /// Unbinds the boxes (NDI, capture card, stream, web). Call it before the manager goes.
    void unsetInputSourceMgr();

    /// The runtime whose thread runs every manager request; not owned, and it must outlive the
    /// panel's use of the manager. Set it before setInputSourceMgr().
    void setZQRuntime(quandel::IZQRuntime* runtime);

    /// The host's message centre, for the capture card box (refused capture formats) and the
    /// web box (load warnings); not owned, may be null.
    void setMsgCenterMgr(quandel::msgcenter::IMsgCenterMgr* msgCenter);

    /// The loading animation (a file QMovie reads) of tiles created from now on.
    void setLoadingPath(const QString& path);

    /// Applies `styleSheet` to the panel and to the dialogs of the stream, web and NDI boxes,
    /// which are windows of their own and do not inherit the panel's sheet.
    void setInputSourceStyleSheet(const QString& styleSheet);

    /// Offers a preview frame of source `id` to every box; the box holding the source's tile
    /// copies it. Any thread, as InputSourceBox::updateFrame(); the frame is read only during
    /// the call. Stop the calling threads before destroying the panel.
    void updateFrame(uint64_t id, const zq::mediacore::IFrame* frame);

    /// Turns every box's preview switch back to off. Sends nothing to the manager.
    void recoverPreview();

    /// Loads the compiled language files into the library's translator in list order (a
    /// refused file is logged and skipped), then switches to "zh_CN", also when `files` is
    /// empty.
    void loadLanguageFiles(const QStringList& files);

    /// Makes `code` ("zh_CN", "zh_TW", "en_US", ...) the language of the library, translates
    /// the panel (translateLanguage()) and hands the code to every box.
    void switchLanguage(const QString& code);

    /// Re-applies the translated texts: title, menu, boxes and their dialogs, and hands the
    /// manager the translated "Streaming" (see setInputSourceMgr()); without a manager that
    /// last step logs "nullptr == inputSourceMgr".
    void translateLanguage() override;

    /// The translation of "WebTab" in UTF-8, for hosts that name web tabs as the panel does.
    std::string webPageTransName() const;

Q_SIGNALS:
    /// Asked through a direct connection before a source is deleted (a tile's delete, clear
    /// all): true when source `id` is in use. Re-emitted from every box; the host's answer is
    /// returned to the asking box. Unanswered means not in use.
    bool signalCheckInputSourceBeUsed(uint64_t id);

protected:
    /// Opens the context menu at the mouse cursor, then hands the event to the base class. A
    /// right click on a scroll bar opens nothing.
    void contextMenuEvent(QContextMenuEvent* event) override;

    /// Moves the focus among the panel's children box by box, in the order the boxes are shown;
    /// beyond the first and the last it leaves the panel as Qt would.
    bool focusNextPrevChild(bool next) override;

private:
    class Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::inputsource
