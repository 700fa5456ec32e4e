// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/stresourcerenamedmodel.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <QString>
#include <QWidget>

#include <memory>

namespace vexa::inputsource {

/// One row of the NDI dialog's sender list: a check button, the sender's IP address, its
/// announced name (elided), the editable name its receiver gets, and whether a source was
/// already added for it. The IP address identifies the sender: it keys every rename and
/// becomes the new source's address. A row counts as added when its IP address label is
/// disabled.
///
/// Object names for style sheets and tests: "ndiCheckBtn", "ndiIpLabel", "ndiSenderLabel",
/// "ndiReceiverEdit", "ndiStateLabel". GUI thread only.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT NdiListItem : public QWidget
{
    Q_OBJECT

public:
    /// An empty row, 36 pixels high, its state in "yellowHint" until filled.
    explicit NdiListItem(QWidget* parent = nullptr);
    ~NdiListItem() override;

    /// Fills the row from one sender of the manager's list. The receiver name is the model's,
    /// or the sender's name when the model has none; up to 20 characters may be typed, except
    /// that a longer default stays whole and editable. An added sender is ticked and disabled.
    void setRenamedModel(const vexa::STResourceRenamedModel& model);

    QString ipAddress() const;
    /// What the receiver name edit holds (what is being typed, during an edit).
    QString receiverName() const;
    bool isAdded() const;
    bool isChecked() const;
    /// Ticks or unticks the row without emitting signalSelectChanged().
    void setChecked(bool checked);

    /// Sets the state text to the translation of "NotAdded", whatever the row's state: only a
    /// new fill shows "Added" again.
    void translateLanguage();

    /// What the operator did on a row, kept across a new list of the same senders.
    struct OperatorState
    {
        /// Ticked by the operator (an added row's tick is the manager's, not the operator's).
        bool ticked = false;
        /// A receiver name the operator accepted; empty when the row still has its default.
        QString acceptedName;
        /// An edit under way: the text typed so far and the cursor.
        bool editing = false;
        QString typed;
        int cursor = 0;
    };

    /// What the operator did on this row.
    OperatorState operatorState() const;

    /// Takes over the tick (unless the sender is added now) and an accepted receiver name from
    /// the row of the same sender in the list before. Call after setRenamedModel().
    void adoptOperatorState(const OperatorState& state);

    /// Continues the edit under way in `state`: the receiver name edit takes the keyboard focus
    /// and the text typed so far, with the cursor where it was. Does nothing when no edit was
    /// under way. The row must be shown.
    void resumeEdit(const OperatorState& state);

    /// Whether the receiver name is being edited.
    bool isEditing() const;

    /// Whether the notice about a refused name is open; the row must stay until it closes.
    bool isNoticeOpen() const;

    /// Makes the row silent for good: it emits nothing from now on, also when its edit loses
    /// the focus as the row goes.
    void retire();

Q_SIGNALS:
    /// The operator accepted a new receiver name for sender `url`.
    void signalReceiverNameChanged(const QString& url, const QString& name);
    /// The operator ticked or unticked the row.
    void signalSelectChanged();
    /// Asked through a direct connection before a name is accepted: true refuses it.
    bool signalReceiverNameIsRepeated(const QString& url, const QString& name);
    /// A name was refused and the operator was told; the click that ended the edit must not act.
    void signalNameRepeate();

private:
    class Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::inputsource
