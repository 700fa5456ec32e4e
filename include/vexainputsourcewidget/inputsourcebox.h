// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/iinputsourcemgr.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <quandel/resource/enresourcetype.h>

#include <QString>
#include <QWidget>

#include <cstdint>
#include <memory>
#include <vector>

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

class InputSourceItem;

/// One collapsible category of the input sources panel: a header row (arrow, title, a preview
/// switch for the whole category, an add button) over a wrap-around grid of tiles, one tile per
/// source of the box's resource type.
///
/// The box mirrors its manager: tiles appear, change and go only when the manager says so in a
/// notification, and every user action (delete, rename, preview, capture format) becomes a
/// request to the manager, run on the runtime thread while the GUI thread waits. Deleting a
/// source that is in use asks the operator first.
///
/// Threads: every member runs on the GUI thread, except updateFrame(), which any thread may
/// call at any time. Manager notifications arrive on the runtime thread and are handled on the
/// GUI thread, in the order the manager fired them.
///
/// Look: the box carries "style" "BG3"; the arrow label ("boxArrowLabel") carries "labelImage"
/// "right" or "down"; the preview switch ("boxPreviewButton") "imageBtn" "display"; the add
/// button ("boxAddButton") "imageBtn" "add". The header is "boxHeaderButton", the title
/// "boxTitleLabel", the tile area "boxItemArea".
class VEXAINPUTSOURCEWIDGET_EXPORT InputSourceBox : public QWidget
{
    Q_OBJECT

public:
    /// An empty, collapsed, unbound box with preview switched off. Registers the meta types the
    /// queued notifications need.
    explicit InputSourceBox(QWidget* parent = nullptr);

    /// Destroys the tiles. A manager still bound is disconnected on the spot, so notifications
    /// fired afterwards reach nothing; the host should still call unsetInputSourceMgr() first.
    ~InputSourceBox() override;

    /// The text of the header, and the box's accessible name.
    void setTitle(const QString& title);

    /// Shows or hides the add button.
    void setAddBtnVisible(bool visible);

    /// Enables (true) or disables the add button and sets its "imageBtn" to "close" (true) or
    /// to the empty text (false). It never hides the button: see setAddBtnVisible().
    void setAddVisible(bool enable);

    /// Shows or hides the preview switch of the header.
    void setPreviewBtnVisible(bool visible);

    /// Shows the category's preview as on (true) or off on the header's switch. Sends nothing
    /// to the manager.
    void setPreviewState(bool previewOn);

    /// The kind of source the box shows (8 capture card, 7 NDI, 13 network stream, 9 web page).
    /// Set once, before the manager is bound; a notification about another kind is not the
    /// box's business.
    void setResourceType(const quandel::resource::EnResourceType& type);
    quandel::resource::EnResourceType resourceType() const;

    /// The loading animation (a file QMovie reads) shown by tiles created from now on.
    void setLoadingPath(const QString& path);

    /// The host's message centre, told about capture formats a device refused. Not owned; may
    /// be null, and then such errors are dropped. Subclasses that tell it more extend it and
    /// call this one.
    virtual void setMsgCenterMgr(quandel::msgcenter::IMsgCenterMgr* msgCenter);

    /// The code of the language the panel now shows ("zh_CN", "zh_TW", "en_US", ...), handed to
    /// every box at each language switch, after translateLanguage(). The base box keeps
    /// nothing; a kind whose behaviour follows the language (the web box's default home page)
    /// overrides it.
    virtual void setLanguageCode(const QString& code);

    /// The runtime whose thread runs every manager request. Not owned; it must outlive the
    /// box's use of the manager. Subclasses extend it and call this one.
    virtual void setZQRuntime(quandel::IZQRuntime* runtime);

    /// Hands a preview frame to the tile of source `id`, which copies it; without such a tile
    /// nothing happens. Any thread, also while the GUI thread adds and removes tiles; the frame
    /// is read only during the call, and the cost does not grow with the number of tiles.
    virtual void updateFrame(uint64_t id, const zq::mediacore::IFrame* frame);

    /// The bound manager; empty while unbound.
    std::weak_ptr<IInputSourceMgr> inputSourceMgr() const;

    /// Binds the box to `mgr`: connects to its notifications on the runtime thread (waiting for
    /// that), then emits signalMgrSettingFinished. An expired pointer is kept but logs
    /// "nullptr == inputSourceMgr" and emits nothing. Binding again replaces the previous
    /// connections.
    void setInputSourceMgr(std::weak_ptr<IInputSourceMgr> mgr);

    /// Disconnects from the manager's notifications on the runtime thread (waiting for that),
    /// then emits signalMgrUnsettingFinished. Logs "nullptr == inputSourceMgr" when the manager
    /// is gone.
    void unsetInputSourceMgr();

    /// The tile of source `id`; the one added last when several share the id; null when none.
    /// The box owns the tile, which lives until the manager removes its source. Constant time.
    /// The tiles of a notification appear over the next turns of the event loop.
    InputSourceItem* findItem(uint64_t id);

    /// How many tiles the box holds.
    int itemCount() const;

    /// Asks the manager to delete the box's sources: all of them when `force` is true,
    /// otherwise those not in use (signalCheckInputSourceBeUsed). Capture devices are never
    /// deleted. The tiles go when the manager confirms.
    void clearItem(bool force);

    /// The selected source ids in the order they were selected (an id selected twice with
    /// Ctrl appears twice).
    std::vector<uint64_t> selectedIds() const;

    /// Empties the selection and clears every tile's selection mark. Emits nothing.
    void clearItemSelect();

    /// Re-applies the translated texts to the header and every tile, then emits
    /// signalTranslateLanguage.
    void translateLanguage();

Q_SIGNALS:
    /// For the panel and subclasses; the box itself never emits it.
    void signalPreviewClicked(bool isChecked);
    /// The operator clicked the add button.
    void signalAddClicked();
    /// A language switch was applied to the box.
    void signalTranslateLanguage();
    /// setInputSourceMgr() bound the box; subclasses and the panel finish their own binding.
    void signalMgrSettingFinished(std::weak_ptr<vexa::inputsource::IInputSourceMgr> mgr,
                                  quandel::IZQRuntime* zqRuntime);
    /// unsetInputSourceMgr() unbound the box.
    void signalMgrUnsettingFinished();
    /// A tile changed the selection (click or Ctrl click).
    void signalItemSelect();
    /// A query for the host's render widget, answered through a direct connection (null when
    /// nothing answers). The box itself never asks.
    QWidget* signalGetRenderWidget();
    /// Asked through a direct connection before a source is deleted: true when source `id` is
    /// in use, so the operator must confirm. Unanswered means not in use.
    bool signalCheckInputSourceBeUsed(uint64_t id);
    /// A web tile asked to be edited.
    void signalItemEdit(uint64_t id);
    /// The operator double-clicked the tile of source `id`.
    void signalDoubleClicked(uint64_t id);

protected:
    /// Delete asks to delete the selected sources (not in a capture-card box); every key is
    /// then passed on to QWidget.
    void keyPressEvent(QKeyEvent* event) override;

private:
    class Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::inputsource
