// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/testing/modalanswerer.h>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDialog>
#include <QElapsedTimer>
#include <QLabel>
#include <QPointer>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <utility>

namespace vexa::testing {

namespace {

// Often enough that a test waits for no more than a frame; rarely enough to cost nothing.
constexpr int pollIntervalMs = 10;

QString className(const QWidget* widget)
{
    return QString::fromLatin1(widget->metaObject()->className());
}

// "&Yes" reads "Yes" and "Save && close" reads "Save & close", as the person sees them.
QString withoutMnemonics(const QString& text)
{
    QString plain;
    plain.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('&') && i + 1 < text.size()) {
            ++i;
        }
        plain.append(text.at(i));
    }
    return plain;
}

// Only what a person can see can be clicked: hidden buttons never match.
QAbstractButton* findButton(const QWidget* modal, const QString& key)
{
    const auto buttons = modal->findChildren<QAbstractButton*>();
    for (QAbstractButton* button : buttons) {
        if (button->isVisible() && button->objectName() == key) {
            return button;
        }
    }
    for (QAbstractButton* button : buttons) {
        if (button->isVisible() && withoutMnemonics(button->text()) == key) {
            return button;
        }
    }
    return nullptr;
}

// A check box or radio button reacts only to its indicator and its text, which may be far from
// the middle of a wide one; the indicator is where a person aims.
QPoint clickPoint(QAbstractButton* button)
{
    QStyle::SubElement indicator = QStyle::SE_CheckBoxIndicator;
    if (qobject_cast<QRadioButton*>(button) != nullptr) {
        indicator = QStyle::SE_RadioButtonIndicator;
    } else if (qobject_cast<QCheckBox*>(button) == nullptr) {
        return button->rect().center();
    }
    QStyleOptionButton option;
    option.initFrom(button);
    option.text = button->text();
    option.icon = button->icon();
    option.iconSize = button->iconSize();
    return button->style()->subElementRect(indicator, &option, button).center();
}

} // namespace

struct ModalAnswerer::Impl : QObject
{
    // Whether the window offers what the answer needs; otherwise `why` says what is missing.
    using Ready = std::function<bool(QWidget* modal, QString* why)>;
    // Gives the answer; false with `why` when it could not be given after all.
    using Act = std::function<bool(QWidget* modal, QString* why)>;

    explicit Impl(ModalAnswerer* owner);

    // The window that was up at arming counts as new again once it has been hidden, so a dialog
    // that is reused and shown again is the next one then. The hiding is watched rather than
    // polled, as it may come and go between two polls.
    bool eventFilter(QObject* watched, QEvent* event) override;

    void arm(Ready readyCheck, Act action);
    void poll();
    void record(const QWidget* modal);
    void end(bool ok, const QString& why);

    ModalAnswerer* const q;
    QTimer timer;
    QElapsedTimer clock;
    int timeoutMs = defaultTimeoutMs;
    QPointer<QWidget> alreadyShown;
    Ready ready;
    Act act;
    bool waiting = false;
    bool answered = false;
    bool timedOut = false;
    QString error;
    QString modalClassName;
    QString modalTitle;
    QStringList labelTexts;
};

ModalAnswerer::Impl::Impl(ModalAnswerer* owner)
    : q(owner)
{
    timer.setInterval(pollIntervalMs);
    QObject::connect(&timer, &QTimer::timeout, q, [this] { poll(); });
}

bool ModalAnswerer::Impl::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Hide && watched == alreadyShown) {
        alreadyShown->removeEventFilter(this);
        alreadyShown.clear();
    }
    return QObject::eventFilter(watched, event);
}

void ModalAnswerer::Impl::arm(Ready readyCheck, Act action)
{
    ready = std::move(readyCheck);
    act = std::move(action);
    if (!alreadyShown.isNull()) {
        alreadyShown->removeEventFilter(this);
    }
    alreadyShown = QApplication::activeModalWidget();
    if (!alreadyShown.isNull()) {
        alreadyShown->installEventFilter(this);
    }
    waiting = true;
    answered = false;
    timedOut = false;
    error.clear();
    modalClassName.clear();
    modalTitle.clear();
    labelTexts.clear();
    clock.start();
    timer.start();
}

void ModalAnswerer::Impl::poll()
{
    QWidget* const modal = QApplication::activeModalWidget();
    const bool isNext = modal != nullptr && modal != alreadyShown && modal->isVisible();
    QString why = QStringLiteral("no new modal window appeared");
    if (isNext && ready(modal, &why)) {
        record(modal);
        // Stopped before answering: the answer may open another modal window whose event loop
        // runs inside this call, and this answerer must not act a second time from there.
        timer.stop();
        waiting = false;
        QString failure;
        const bool ok = act(modal, &failure);
        end(ok, failure);
        return;
    }
    if (clock.elapsed() < timeoutMs) {
        return;
    }
    timer.stop();
    waiting = false;
    timedOut = true;
    // Whatever modal window is up now keeps the test waiting for an answer that will not come,
    // even the one that was up at arming.
    if (modal != nullptr && modal->isVisible()) {
        record(modal);
        const QPointer<QWidget> window(modal);
        if (auto* const dialog = qobject_cast<QDialog*>(modal)) {
            dialog->reject();
        } else {
            modal->close();
        }
        // A window that refuses to close would keep the test waiting for ever.
        if (!window.isNull() && window->isVisible()) {
            window->hide();
        }
    }
    end(false, QStringLiteral("no answer within %1 ms: %2").arg(timeoutMs).arg(why));
}

void ModalAnswerer::Impl::record(const QWidget* modal)
{
    modalClassName = className(modal);
    modalTitle = modal->windowTitle();
    labelTexts.clear();
    const auto labels = modal->findChildren<QLabel*>();
    for (const QLabel* label : labels) {
        if (label->isVisible() && !label->text().isEmpty()) {
            labelTexts.append(label->text());
        }
    }
}

void ModalAnswerer::Impl::end(bool ok, const QString& why)
{
    answered = ok;
    error = ok ? QString() : why;
    if (!ok) {
        qWarning("ModalAnswerer: %s", qPrintable(error));
    }
    Q_EMIT q->finished(ok);
}

ModalAnswerer::ModalAnswerer(QObject* parent)
    : QObject(parent)
    , d(std::make_unique<Impl>(this))
{}

ModalAnswerer::~ModalAnswerer() = default;

void ModalAnswerer::clickWhenShown(const QString& button)
{
    clickWhenShown(QStringList{button});
}

void ModalAnswerer::clickWhenShown(const QStringList& buttons)
{
    d->arm(
        [buttons](QWidget* modal, QString* why) {
            for (const QString& key : buttons) {
                const QAbstractButton* const button = findButton(modal, key);
                if (button == nullptr) {
                    *why =
                        QStringLiteral("no visible button \"%1\" in %2").arg(key, className(modal));
                    return false;
                }
                if (!button->isEnabled()) {
                    *why = QStringLiteral("button \"%1\" in %2 stays disabled")
                               .arg(key, className(modal));
                    return false;
                }
            }
            return true;
        },
        [buttons](QWidget* modal, QString* why) {
            const QPointer<QWidget> window(modal);
            for (const QString& key : buttons) {
                QAbstractButton* const button =
                    window.isNull() ? nullptr : findButton(window.data(), key);
                if (button == nullptr) {
                    *why = QStringLiteral("button \"%1\" was gone when its turn came").arg(key);
                    return false;
                }
                QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, clickPoint(button));
            }
            return true;
        });
}

void ModalAnswerer::pressKeyWhenShown(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    d->arm([](QWidget*, QString*) { return true; },
           [key, modifiers](QWidget* modal, QString*) {
               QWidget* const focus = modal->focusWidget();
               QTest::keyClick(focus != nullptr ? focus : modal, key, modifiers);
               return true;
           });
}

void ModalAnswerer::closeWhenShown()
{
    d->arm([](QWidget*, QString*) { return true; },
           [](QWidget* modal, QString*) {
               // The desktop asks the window, not the widget, which then decides like any
               // close request from outside.
               if (QWindow* const window = modal->windowHandle()) {
                   QCloseEvent close;
                   QCoreApplication::sendEvent(window, &close);
               } else {
                   modal->close();
               }
               return true;
           });
}

void ModalAnswerer::whenShown(std::function<void(QWidget* modal)> action)
{
    d->arm([](QWidget*, QString*) { return true; },
           [action = std::move(action)](QWidget* modal, QString*) {
               action(modal);
               return true;
           });
}

void ModalAnswerer::setTimeout(int milliseconds)
{
    d->timeoutMs = milliseconds;
}

int ModalAnswerer::timeout() const
{
    return d->timeoutMs;
}

bool ModalAnswerer::isWaiting() const
{
    return d->waiting;
}

bool ModalAnswerer::answered() const
{
    return d->answered;
}

bool ModalAnswerer::timedOut() const
{
    return d->timedOut;
}

QString ModalAnswerer::errorString() const
{
    return d->error;
}

QString ModalAnswerer::modalClassName() const
{
    return d->modalClassName;
}

QString ModalAnswerer::modalTitle() const
{
    return d->modalTitle;
}

QStringList ModalAnswerer::labelTexts() const
{
    return d->labelTexts;
}

} // namespace vexa::testing
