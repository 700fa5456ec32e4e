// SPDX-License-Identifier: MIT
#include <vexa/widgets/dialog.h>

#include <vexa/widgets/pushbutton.h>

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace vexa::widgets {

namespace {

constexpr int titleBarHeight = 36;
constexpr int closeButtonSize = 28;

} // namespace

struct Dialog::Impl : QObject
{
    explicit Impl(Dialog* owner);

    // The title bar moves the window: the window follows the pointer from the press of the left
    // button to its release, keeping the offset at which it was grabbed.
    bool eventFilter(QObject* watched, QEvent* event) override;

    Dialog* const q;
    QWidget* const frame;
    QWidget* const titleBar;
    QLabel* const titleLabel;
    PushButton* const closeButton;
    QWidget* const content;
    bool dragging = false;
    QPoint grabOffset;
};

Dialog::Impl::Impl(Dialog* owner)
    : q(owner)
    , frame(new QWidget(owner))
    , titleBar(new QWidget(frame))
    , titleLabel(new QLabel(titleBar))
    , closeButton(new PushButton(titleBar))
    , content(new QWidget(frame))
{
    frame->setObjectName(QStringLiteral("dialogFrame"));
    titleBar->setObjectName(QStringLiteral("titleBar"));
    titleLabel->setObjectName(QStringLiteral("titleLabel"));
    closeButton->setObjectName(QStringLiteral("closeBtn"));
    content->setObjectName(QStringLiteral("dialogWidget"));
    for (QWidget* styled : {frame, titleBar, content}) {
        styled->setAttribute(Qt::WA_StyledBackground);
    }

    titleBar->setFixedHeight(titleBarHeight);
    titleBar->installEventFilter(this);
    titleLabel->setTextFormat(Qt::PlainText);

    closeButton->setProperty("imageBtn", QStringLiteral("close"));
    closeButton->setFixedSize(closeButtonSize, closeButtonSize);
    closeButton->setToolTip(Dialog::tr("Close"));
    // Enter in the dialog must never land on the close button, and tabbing through the
    // content should not stop in the title bar.
    closeButton->setFocusPolicy(Qt::NoFocus);
    closeButton->setAutoDefault(false);
    QObject::connect(closeButton, &QPushButton::clicked, q, &QWidget::close);

    auto* const titleLayout = new QHBoxLayout(titleBar);
    titleLayout->setContentsMargins(12, 0, 4, 0);
    titleLayout->setSpacing(8);
    titleLayout->addWidget(titleLabel, 1);
    titleLayout->addWidget(closeButton);

    auto* const frameLayout = new QVBoxLayout(frame);
    frameLayout->setContentsMargins(0, 0, 0, 0);
    frameLayout->setSpacing(0);
    frameLayout->addWidget(titleBar);
    frameLayout->addWidget(content, 1);

    auto* const outerLayout = new QVBoxLayout(q);
    outerLayout->setContentsMargins(0, 0, 0, 0);
    outerLayout->setSpacing(0);
    outerLayout->addWidget(frame);
}

bool Dialog::Impl::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != titleBar) {
        return QObject::eventFilter(watched, event);
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        const auto* const mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::LeftButton) {
            dragging = true;
            grabOffset = mouse->globalPos() - q->pos();
            return true;
        }
        break;
    }
    case QEvent::MouseMove:
        // The pressed state is remembered rather than read from the event's buttons, so a move
        // that arrives without them (some platforms synthesise such moves) still drags.
        if (dragging) {
            q->move(static_cast<QMouseEvent*>(event)->globalPos() - grabOffset);
            return true;
        }
        break;
    case QEvent::MouseButtonRelease:
        if (static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton && dragging) {
            dragging = false;
            return true;
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

Dialog::Dialog(QWidget* parent)
    : QDialog(parent)
    , d(std::make_unique<Impl>(this))
{
    // The desktop's frame would draw a second title bar; the dialog's own replaces it.
    setWindowFlags(windowFlags() | Qt::FramelessWindowHint);
}

Dialog::~Dialog() = default;

void Dialog::setTitle(const QString& title)
{
    setWindowTitle(title);
}

QString Dialog::title() const
{
    return d->titleLabel->text();
}

QWidget* Dialog::dialogWidget() const
{
    return d->content;
}

void Dialog::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::WindowTitleChange) {
        d->titleLabel->setText(windowTitle());
    }
    QDialog::changeEvent(event);
}

} // namespace vexa::widgets
