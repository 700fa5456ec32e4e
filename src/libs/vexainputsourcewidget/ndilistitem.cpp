// SPDX-License-Identifier: MIT
#include "ndilistitem.h"

#include "modalloop.h"
#include "namenotice.h"
#include "trkey.h"

#include <vexa/widgets/editbox.h>
#include <vexa/widgets/pushbutton.h>
#include <vexa/widgets/quietlayout.h>
#include <vexa/widgets/style.h>

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>

namespace vexa::inputsource {

namespace {

constexpr int rowHeight = 36;
constexpr int checkSide = 20;
constexpr int ipWidth = 130;
constexpr int nameWidth = 190;
constexpr int senderNameInset = 20;
constexpr int receiverNameLimit = 20;
// EditBox's own default: no limit a person would reach.
constexpr int unlimitedLength = 32767;

QLineEdit* editorOf(const vexa::widgets::EditBox& edit)
{
    return edit.findChild<QLineEdit*>(QStringLiteral("editor"));
}

} // namespace

class NdiListItem::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(NdiListItem* q);

    void build();
    void setStateText(const QString& text);
    void accept(const QString& name);
    // Tells the operator that the name is taken; false when the row went while the notice was
    // open.
    bool tellNameRepeated();

    NdiListItem* const q;
    vexa::widgets::PushButton* checkButton = nullptr;
    QLabel* ipLabel = nullptr;
    QLabel* senderLabel = nullptr;
    vexa::widgets::EditBox* receiverEdit = nullptr;
    QLabel* stateLabel = nullptr;
    QString acceptedName;
    // The whole announced name; the label may show it elided.
    QString senderName;
    // Set once the operator accepted a name of their own, which a new list must not undo.
    bool renamedByOperator = false;
    bool retired = false;

public Q_SLOTS:
    void onCheckBtnClicked(bool isChecked);
    void onReceiverEditingFinished();
};

NdiListItem::Impl::Impl(NdiListItem* owner)
    : q(owner)
{}

void NdiListItem::Impl::build()
{
    q->setFixedHeight(rowHeight);

    checkButton = new vexa::widgets::PushButton(q);
    checkButton->setObjectName(QStringLiteral("ndiCheckBtn"));
    checkButton->setFixedSize(checkSide, checkSide);
    checkButton->setCheckable(true);
    checkButton->setProperty("checkStyle", QStringLiteral("checked"));
    // The list ticks its current row with Space; Tab walks the receiver names only.
    checkButton->setFocusPolicy(Qt::NoFocus);

    ipLabel = new QLabel(q);
    ipLabel->setObjectName(QStringLiteral("ndiIpLabel"));
    ipLabel->setFixedWidth(ipWidth);

    senderLabel = new QLabel(q);
    senderLabel->setObjectName(QStringLiteral("ndiSenderLabel"));
    senderLabel->setFixedWidth(nameWidth);

    receiverEdit = new vexa::widgets::EditBox(q);
    receiverEdit->setObjectName(QStringLiteral("ndiReceiverEdit"));
    receiverEdit->setFixedWidth(nameWidth);

    stateLabel = new QLabel(q);
    stateLabel->setObjectName(QStringLiteral("ndiStateLabel"));
    stateLabel->setAlignment(Qt::AlignCenter);
    stateLabel->setProperty("style", QStringLiteral("yellowHint"));

    // A list of senders builds all its rows in one pass of the event loop (see quietlayout.h).
    auto* const layout = new QHBoxLayout;
    layout->setContentsMargins(8, 0, 6, 0);
    layout->setSpacing(8);
    layout->addWidget(checkButton);
    layout->addWidget(ipLabel);
    layout->addWidget(senderLabel);
    layout->addWidget(receiverEdit);
    layout->addWidget(stateLabel);
    vexa::widgets::installQuietly(q, layout);

    connect(checkButton, &QPushButton::clicked, this, &Impl::onCheckBtnClicked);
    connect(receiverEdit, &vexa::widgets::EditBox::editingFinished, this,
            &Impl::onReceiverEditingFinished);
}

void NdiListItem::Impl::setStateText(const QString& text)
{
    stateLabel->setText(text);
    // A screen reader announces the sender and its state, as the row shows them.
    const QString accessible = QStringLiteral("%1, %2").arg(senderName, text);
    q->setAccessibleName(accessible);
    checkButton->setAccessibleName(accessible);
}

void NdiListItem::Impl::accept(const QString& name)
{
    acceptedName = name;
    // A long default is never cut; whatever the operator types later is held to 20 characters.
    receiverEdit->setMaxLength(name.size() <= receiverNameLimit ? receiverNameLimit
                                                                : unlimitedLength);
    receiverEdit->setText(name);
}

void NdiListItem::Impl::onCheckBtnClicked(bool)
{
    Q_EMIT q->signalSelectChanged();
}

void NdiListItem::Impl::onReceiverEditingFinished()
{
    if (retired) {
        return;
    }
    const QString text = receiverEdit->text();
    if (text.isEmpty()) {
        receiverEdit->setText(acceptedName);
        return;
    }
    if (text == acceptedName) {
        return;
    }
    const QString ip = ipLabel->text();
    if (q->signalReceiverNameIsRepeated(ip, text)) {
        receiverEdit->setText(acceptedName);
        if (tellNameRepeated()) {
            Q_EMIT q->signalNameRepeate();
        }
        return;
    }
    acceptedName = text;
    renamedByOperator = true;
    Q_EMIT q->signalReceiverNameChanged(ip, acceptedName);
}

bool NdiListItem::Impl::tellNameRepeated()
{
    return NameNotice::show(this);
}

NdiListItem::NdiListItem(QWidget* parent)
    : QWidget(parent)
    , d(std::make_unique<Impl>(this))
{
    d->build();
}

NdiListItem::~NdiListItem()
{
    d->retired = true;
}

void NdiListItem::setRenamedModel(const vexa::STResourceRenamedModel& model)
{
    d->ipLabel->setText(QString::fromStdString(model.ipAddress));

    d->senderName = QString::fromStdString(model.senderName);
    const QFontMetrics metrics(d->senderLabel->font());
    d->senderLabel->setText(metrics.elidedText(d->senderName, Qt::ElideRight,
                                               d->senderLabel->width() - senderNameInset));
    d->senderLabel->setToolTip(d->senderName);

    const QString name = QString::fromStdString(model.name);
    d->accept(name.isEmpty() ? d->senderName : name);

    const bool added = model.flag != 0;
    if (added) {
        d->checkButton->setChecked(true);
    }
    d->checkButton->setEnabled(!added);
    d->ipLabel->setEnabled(!added);

    vexa::widgets::setStyleProperty(
        d->stateLabel, "style", added ? QStringLiteral("grayHint") : QStringLiteral("yellowHint"));
    d->setStateText(trKey(added ? "Added" : "NotAdded"));
}

QString NdiListItem::ipAddress() const
{
    return d->ipLabel->text();
}

QString NdiListItem::receiverName() const
{
    return d->receiverEdit->text();
}

bool NdiListItem::isAdded() const
{
    return !d->ipLabel->isEnabled();
}

bool NdiListItem::isChecked() const
{
    return d->checkButton->isChecked();
}

void NdiListItem::setChecked(bool checked)
{
    d->checkButton->setChecked(checked);
}

void NdiListItem::translateLanguage()
{
    d->setStateText(trKey("NotAdded"));
}

NdiListItem::OperatorState NdiListItem::operatorState() const
{
    OperatorState state;
    state.ticked = isChecked() && !isAdded();
    if (d->renamedByOperator) {
        state.acceptedName = d->acceptedName;
    }
    if (isEditing()) {
        if (const QLineEdit* const editor = editorOf(*d->receiverEdit)) {
            state.editing = true;
            state.typed = editor->text();
            state.cursor = editor->cursorPosition();
        }
    }
    return state;
}

void NdiListItem::adoptOperatorState(const OperatorState& state)
{
    if (state.ticked && !isAdded()) {
        setChecked(true);
    }
    if (!state.acceptedName.isEmpty()) {
        d->accept(state.acceptedName);
        d->renamedByOperator = true;
    }
}

void NdiListItem::resumeEdit(const OperatorState& state)
{
    if (!state.editing) {
        return;
    }
    // The edit begins from the accepted name, so Escape still goes back to it.
    d->receiverEdit->beginEdit();
    if (QLineEdit* const editor = editorOf(*d->receiverEdit)) {
        editor->setText(state.typed);
        editor->setCursorPosition(state.cursor);
    }
}

bool NdiListItem::isEditing() const
{
    return d->receiverEdit->isEditing();
}

bool NdiListItem::isNoticeOpen() const
{
    return ModalLoop::isRunning(d.get());
}

void NdiListItem::retire()
{
    d->retired = true;
    blockSignals(true);
    d->receiverEdit->blockSignals(true);
}

} // namespace vexa::inputsource

#include "ndilistitem.moc"
