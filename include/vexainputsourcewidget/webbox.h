// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <QString>

#include <cstdint>
#include <memory>

namespace vexa::inputsource {

class WebDialog;

/// The category of web pages (kind 9), titled "Web" (the untranslated title: the panel sets
/// the translated one). Its tiles and their binding are InputSourceBox's; the box adds the
/// web dialog (WebDialog), which it opens to add a page (the add button) or to edit one (a
/// tile's "Edit"), and turns a double click on a tile into a web operation of kind 1.
///
/// Adding proposes the name "WebPage" + the first free number among the names of all the
/// manager's sources, and one tab "WebTab" + "1" showing the home page of the UI language
/// (setLanguageCode(); see WebDialog::setHomePages()). Editing starts from the source's own
/// name, mode and tabs, as its media description gives them.
///
/// Manager use: getResources(), getResourceById() and isNameRepeated() are called directly on
/// the GUI thread, the manager held for the call; webOperation() and addInputSources() run on
/// the runtime thread while the GUI thread waits. Without a manager, opening the dialog logs
/// "nullptr == inputSourceMgr" and a double click "nullptr == webResource"; editing a source
/// the manager no longer has logs "nullptr == webResource" and opens nothing.
///
/// The dialog follows the box: its binding (setInputSourceMgr(), unsetInputSourceMgr()),
/// runtime, message centre, language and translation. It is created once, without a parent,
/// and reused; it is not the box's child. A box destroyed while the dialog is open closes it,
/// unbinds it and returns from showDialog() without touching anything; the dialog itself is
/// destroyed when the application object goes.
///
/// Threads: every member runs on the GUI thread, except what InputSourceBox allows elsewhere.
class VEXAINPUTSOURCEWIDGET_EXPORT WebBox : public InputSourceBox
{
    Q_OBJECT

public:
    /// What the dialog is opened for.
    enum Mode
    {
        Add = 0, ///< a new web page
        Edit = 1 ///< an existing source
    };
    Q_ENUM(Mode)

    /// An empty web box with its (hidden) dialog.
    explicit WebBox(QWidget* parent = nullptr);

    /// Destroys the box and its tiles; the dialog is unbound and, if open, closed.
    ~WebBox() override;

    /// The runtime of the binding (InputSourceBox::setZQRuntime); not owned.
    void setZQRuntime(quandel::IZQRuntime* runtime) override;

    /// The message centre of the box and of its dialog's load warnings; not owned, may be null.
    void setMsgCenterMgr(quandel::msgcenter::IMsgCenterMgr* msgCenter) override;

    /// Keeps the UI language code and hands it to the dialog: "zh_CN" exactly chooses the
    /// Chinese home page for new tabs, every other code (also an empty one) the other page.
    void setLanguageCode(const QString& code) override;

    /// The code last given to setLanguageCode(); empty until then.
    QString languageCode() const;

    /// The home pages of new tabs, for "zh_CN" and for every other language (see
    /// WebDialog::setHomePages()).
    void setHomePages(const QString& simplifiedChinese, const QString& other);

    /// Fills the dialog for `mode` and runs it modally; returns when it closes. `id` is the
    /// source to edit, 0 when adding. Nothing opens without a manager, or when the source to
    /// edit is unknown to it (both logged).
    void showDialog(const Mode mode, const uint64_t id);

    /// The box's dialog, for hosts that style or inspect it. Owned by the application.
    WebDialog* dialog() const;

private:
    class Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::inputsource
