// SPDX-License-Identifier: MIT
#include <vexa/widgets/tipdialog.h>

#include <vexa/widgets/pushbutton.h>

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <QVariant>

#include <array>

namespace vexa::widgets {

namespace {

constexpr int dialogWidth = 420;
constexpr int iconSize = 32;
constexpr int buttonHeight = 28;

} // namespace

struct TipDialog::Impl
{
    Impl(TipDialog* owner, EnumTipType type);

    TipDialog* const q;
    const EnumTipType type;
    QLabel* const icon;
    QLabel* const text;
    QCheckBox* const checkBox;
    // In the order of the result codes: first, second, third.
    const std::array<PushButton*, 3> buttons;
};

TipDialog::Impl::Impl(TipDialog* owner, EnumTipType tipType)
    : q(owner)
    , type(tipType)
    , icon(new QLabel(owner->dialogWidget()))
    , text(new QLabel(owner->dialogWidget()))
    , checkBox(new QCheckBox(owner->dialogWidget()))
    // Created first to third so that Tab walks them in that order, whatever their places.
    , buttons{new PushButton(owner->dialogWidget()), new PushButton(owner->dialogWidget()),
              new PushButton(owner->dialogWidget())}
{
    icon->setObjectName(QStringLiteral("tipIcon"));
    icon->setProperty("tipType",
                      type == Notice ? QStringLiteral("notice") : QStringLiteral("warning"));
    icon->setFixedSize(iconSize, iconSize);

    text->setObjectName(QStringLiteral("tipText"));
    // Messages often carry names the operator typed; plain text keeps a "<" in them a "<".
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    text->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);

    checkBox->setObjectName(QStringLiteral("checkBox"));
    checkBox->hide();

    const std::array<QString, 3> names = {QStringLiteral("firstBtn"), QStringLiteral("secondBtn"),
                                          QStringLiteral("thirdBtn")};
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        PushButton* const button = buttons[i];
        button->setObjectName(names[i]);
        button->setProperty("style", i == 0 ? QStringLiteral("general") : QStringLiteral("assist"));
        button->setFixedHeight(buttonHeight);
        const int code = static_cast<int>(i) + FirstButton;
        QObject::connect(button, &QPushButton::clicked, q,
                         [dialog = q, code] { dialog->done(code); });
    }
    buttons[0]->setDefault(true);

    // The check box belongs to the message, so it lines up with the text, not with the icon.
    auto* const messageColumn = new QVBoxLayout;
    messageColumn->setSpacing(14);
    messageColumn->addWidget(text);
    messageColumn->addWidget(checkBox);

    auto* const messageRow = new QHBoxLayout;
    messageRow->setSpacing(14);
    messageRow->addWidget(icon, 0, Qt::AlignTop);
    messageRow->addLayout(messageColumn, 1);

    auto* const buttonRow = new QHBoxLayout;
    buttonRow->setSpacing(12);
    buttonRow->addStretch(1);
    buttonRow->addWidget(buttons[2]);
    buttonRow->addWidget(buttons[1]);
    buttonRow->addWidget(buttons[0]);
    buttonRow->addStretch(1);

    auto* const layout = new QVBoxLayout(q->dialogWidget());
    layout->setContentsMargins(24, 22, 24, 20);
    layout->setSpacing(20);
    layout->addLayout(messageRow);
    layout->addLayout(buttonRow);
}

TipDialog::TipDialog(EnumTipType type, QWidget* parent)
    : Dialog(parent)
    , d(std::make_unique<Impl>(this, type))
{
    setTitle(type == Notice ? tr("Notice") : tr("Warning"));
    setBtnText(tr("OK"), tr("Cancel"), QString());
    setFixedWidth(dialogWidth);
}

TipDialog::~TipDialog() = default;

TipDialog::EnumTipType TipDialog::tipType() const
{
    return d->type;
}

void TipDialog::setTipText(const QString& text)
{
    d->text->setText(text);
}

void TipDialog::setCheckText(const QString& text, bool show)
{
    d->checkBox->setText(text);
    d->checkBox->setVisible(show);
}

void TipDialog::setBtnText(const QString& first, const QString& second, const QString& third)
{
    const std::array<const QString*, 3> texts = {&first, &second, &third};
    for (std::size_t i = 0; i < d->buttons.size(); ++i) {
        d->buttons[i]->setText(*texts[i]);
        d->buttons[i]->setVisible(!texts[i]->isEmpty());
    }
}

PromptBoxTriggerInfo TipDialog::run()
{
    // The text may have grown or shrunk since the last showing; the height follows it.
    adjustSize();
    const int result = exec();
    return {result, d->checkBox->isChecked()};
}

} // namespace vexa::widgets
