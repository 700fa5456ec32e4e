// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/streamingdialog.h>

#include "accessiblenames.h"
#include "trkey.h"

#include <vexa/widgets/editbox.h>
#include <vexa/widgets/pushbutton.h>
#include <vexa/widgets/style.h>

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QStringList>
#include <QVBoxLayout>

namespace vexa::inputsource {

namespace {

// The schemes the manager can open. Compared exactly: a capitalised or padded scheme is a
// different address to the manager, so it is refused here rather than failing later.
const QStringList allowedSchemes = {QStringLiteral("rtsp"), QStringLiteral("rtmp")};

constexpr int dialogWidth = 520;
constexpr int nameLabelWidth = 60;
constexpr int nameMaxLength = 20;
constexpr int gridSpacing = 8;
constexpr int buttonHeight = 24;
constexpr int buttonSpacing = 12;
constexpr int contentSpacing = 20;
constexpr int contentMargin = 28;

bool hasAllowedScheme(const QString& url)
{
    const int colon = url.indexOf(QLatin1Char(':'));
    const QString scheme = colon < 0 ? url : url.left(colon);
    return allowedSchemes.contains(scheme, Qt::CaseSensitive);
}

} // namespace

class StreamingDialog::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(StreamingDialog* q);

    void build();
    void connectWidgets();
    // Puts the address field and the hint in the look of an accepted (true) or refused address.
    void showUrlState(bool accepted);
    bool eventFilter(QObject* watched, QEvent* event) override;

    StreamingDialog* const q;
    QLabel* nameLabel = nullptr;
    vexa::widgets::EditBox* nameEdit = nullptr;
    QLabel* urlLabel = nullptr;
    vexa::widgets::EditBox* urlEdit = nullptr;
    QLabel* hintLabel = nullptr;
    vexa::widgets::PushButton* cancelButton = nullptr;
    vexa::widgets::PushButton* confirmButton = nullptr;

public Q_SLOTS:
    void onConfirmClicked();
    bool onUrlEditingFinished();
};

StreamingDialog::Impl::Impl(StreamingDialog* owner)
    : q(owner)
{}

void StreamingDialog::Impl::build()
{
    QWidget* const content = q->dialogWidget();
    q->setObjectName(QStringLiteral("streamingDialog"));
    q->setFixedWidth(dialogWidth);

    nameLabel = new QLabel(content);
    nameLabel->setObjectName(QStringLiteral("nameLabel"));
    nameLabel->setFixedWidth(nameLabelWidth);
    nameEdit = new vexa::widgets::EditBox(content);
    nameEdit->setObjectName(QStringLiteral("nameEdit"));
    nameEdit->setMaxLength(nameMaxLength);
    nameEdit->setCanRestoreText(true);
    urlLabel = new QLabel(content);
    urlLabel->setObjectName(QStringLiteral("urlLabel"));
    urlEdit = new vexa::widgets::EditBox(content);
    urlEdit->setObjectName(QStringLiteral("urlEdit"));
    hintLabel = new QLabel(content);
    hintLabel->setObjectName(QStringLiteral("hintLabel"));
    hintLabel->setProperty("style", QStringLiteral("grayHint"));
    nameLabel->setBuddy(nameEdit);
    urlLabel->setBuddy(urlEdit);

    auto* const grid = new QGridLayout;
    grid->setHorizontalSpacing(gridSpacing);
    grid->setVerticalSpacing(gridSpacing);
    grid->addWidget(nameLabel, 0, 0);
    grid->addWidget(nameEdit, 0, 1);
    grid->addWidget(urlLabel, 1, 0);
    grid->addWidget(urlEdit, 1, 1);
    grid->addWidget(hintLabel, 2, 1, Qt::AlignRight);

    cancelButton = new vexa::widgets::PushButton(content);
    cancelButton->setObjectName(QStringLiteral("cancelBtn"));
    cancelButton->setProperty("style", QStringLiteral("assist"));
    cancelButton->setFixedHeight(buttonHeight);
    confirmButton = new vexa::widgets::PushButton(content);
    confirmButton->setObjectName(QStringLiteral("confirmBtn"));
    confirmButton->setProperty("style", QStringLiteral("general"));
    confirmButton->setFixedHeight(buttonHeight);
    // Enter anywhere in the dialog confirms, unless the focus is on Cancel.
    confirmButton->setDefault(true);

    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(buttonSpacing);
    buttons->addStretch();
    buttons->addWidget(cancelButton);
    buttons->addWidget(confirmButton);
    buttons->addStretch();

    auto* const layout = new QVBoxLayout(content);
    layout->setSpacing(contentSpacing);
    layout->setContentsMargins(contentMargin, contentMargin, contentMargin, contentMargin);
    layout->addLayout(grid);
    layout->addLayout(buttons);

    // Escape closes the dialog at once, also from a field whose typing it would otherwise undo
    // first: the next opening starts afresh anyway.
    nameEdit->focusProxy()->installEventFilter(this);
    urlEdit->focusProxy()->installEventFilter(this);
}

void StreamingDialog::Impl::connectWidgets()
{
    connect(cancelButton, &QPushButton::clicked, q, &QWidget::close);
    connect(confirmButton, &QPushButton::clicked, this, &Impl::onConfirmClicked);
    connect(urlEdit, &vexa::widgets::EditBox::editingFinished, this, &Impl::onUrlEditingFinished);
}

bool StreamingDialog::Impl::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        q->close();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void StreamingDialog::Impl::showUrlState(bool accepted)
{
    urlEdit->setEditProperty("style", accepted ? QString() : QStringLiteral("editError"));
    hintLabel->setProperty("style",
                           accepted ? QStringLiteral("grayHint") : QStringLiteral("errorHint"));
    vexa::widgets::repolish(urlEdit, vexa::widgets::RepolishScope::WidgetAndDescendants);
    vexa::widgets::repolish(hintLabel);
    vexa::widgets::repolish(q);
}

bool StreamingDialog::Impl::onUrlEditingFinished()
{
    // Taken as typed: a leading space is the operator's mistake to see, not ours to hide.
    const bool accepted = hasAllowedScheme(urlEdit->text());
    showUrlState(accepted);
    return accepted;
}

void StreamingDialog::Impl::onConfirmClicked()
{
    if (!onUrlEditingFinished()) {
        return;
    }
    const QString name = nameEdit->text();
    // The box has told the operator; the dialog stays open for another name.
    if (Q_EMIT q->signalNameEditIsRepeated(name)) {
        return;
    }
    Q_EMIT q->signalConfirmClicked(name, urlEdit->text());
    q->close();
}

StreamingDialog::StreamingDialog(QWidget* parent)
    : vexa::widgets::Dialog(parent)
    , d(std::make_unique<Impl>(this))
{
    d->build();
    d->connectWidgets();
}

StreamingDialog::~StreamingDialog() = default;

void StreamingDialog::setMediaName(const QString& name)
{
    d->nameEdit->setText(name);
}

void StreamingDialog::translateLanguage()
{
    setTitle(trKey("AddStreaming"));
    d->nameLabel->setText(trKey("MediaName"));
    d->urlLabel->setText(trKey("WebUrl"));
    d->hintLabel->setText(trKey("SupportAddingFormats"));
    d->urlEdit->setPlaceholderText(trKey("PleaseEnter"));
    d->cancelButton->setText(trKey("Cancel"));
    d->confirmButton->setText(trKey("OK"));

    // What a screen reader says for each control, in the same language.
    nameField(d->nameEdit, trKey("MediaName"));
    nameField(d->urlEdit, trKey("WebUrl"), trKey("SupportAddingFormats"));
    d->cancelButton->setAccessibleName(trKey("Cancel"));
    d->confirmButton->setAccessibleName(trKey("OK"));
    nameCloseButton(this);
}

void StreamingDialog::showEvent(QShowEvent* event)
{
    d->urlEdit->setText(QString());
    d->showUrlState(true);
    vexa::widgets::Dialog::showEvent(event);
}

void StreamingDialog::mousePressEvent(QMouseEvent* event)
{
    setFocus(Qt::OtherFocusReason);
    vexa::widgets::Dialog::mousePressEvent(event);
}

} // namespace vexa::inputsource

#include "streamingdialog.moc"
