// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <vexa/widgets/dialog.h>

#include <QString>

#include <memory>

namespace vexa::inputsource {

/// The modal dialog that asks for a network stream: a media name (at most 20 characters typed)
/// and an address whose scheme must be "rtsp" or "rtmp" (exactly so, before the first colon;
/// the rest of the address is the manager's to judge). A refused address turns the address
/// field to "style" "editError" and the hint below it to "errorHint" as soon as the field is
/// left; a corrected one turns them back to "" and "grayHint".
///
/// Confirming (the "OK" button, or Enter) checks the address, then asks
/// signalNameEditIsRepeated whether the name is taken; only a free name and a good address
/// emit signalConfirmClicked and close the dialog. Cancel, the title bar's close button and
/// Escape close it without a word.
///
/// StreamingBox creates one dialog without a parent and opens it for every new stream; the
/// dialog outlives that box and is destroyed when the application object goes. Every text
/// comes from translateLanguage(). Object names for style sheets and tests: "streamingDialog",
/// "nameLabel", "nameEdit", "urlLabel", "urlEdit", "hintLabel", "cancelBtn", "confirmBtn".
/// GUI thread only.
class VEXAINPUTSOURCEWIDGET_EXPORT StreamingDialog : public vexa::widgets::Dialog
{
    Q_OBJECT

public:
    /// A dialog 520 pixels wide, without texts until translateLanguage() runs.
    explicit StreamingDialog(QWidget* parent = nullptr);

    /// Destroys the dialog and its fields.
    ~StreamingDialog() override;

    /// Puts `name` into the name field (a text longer than 20 characters is kept whole).
    void setMediaName(const QString& name);

    /// Sets every text, placeholder and accessible name from the current language.
    void translateLanguage();

Q_SIGNALS:
    /// The operator confirmed a free name and an accepted address, both untrimmed.
    void signalConfirmClicked(const QString& name, const QString& url);
    /// Asked through a direct connection before confirming: true when `name` is already used.
    /// The dialog stays open then. Unanswered means free.
    bool signalNameEditIsRepeated(const QString& name);

protected:
    /// Empties the address and puts both fields in their normal style; the name is kept (the
    /// box has just set it).
    void showEvent(QShowEvent* event) override;

    /// A press on the dialog's own surface takes the focus from the field being typed in, so
    /// that its editing finishes (and the address is checked) before anything else happens.
    void mousePressEvent(QMouseEvent* event) override;

private:
    class Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::inputsource
