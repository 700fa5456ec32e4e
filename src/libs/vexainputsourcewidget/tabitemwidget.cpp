// SPDX-License-Identifier: MIT
#include "tabitemwidget.h"

#include "accessiblenames.h"
#include "trkey.h"

#include <vexa/widgets/editbox.h>
#include <vexa/widgets/pushbutton.h>

#include <QHBoxLayout>
#include <QLineEdit>
#include <QStringList>

#include <algorithm>

namespace vexa::inputsource {

namespace {

constexpr int rowHeight = 36;
constexpr int rowMargin = 8;
constexpr int rowSpacing = 8;
constexpr int nameWidth = 120;
constexpr int nameMaxLength = 20;
constexpr int deleteSide = 20;

// Kept as a substring test, not a prefix test: an address that carries one of them anywhere
// is the operator's to judge.
const QStringList schemeMarkers = {QStringLiteral("http://"), QStringLiteral("https://"),
                                   QStringLiteral("file:///")};

} // namespace

class TabItemWidget::Impl : public QObject
{
    Q_OBJECT

public:
    Impl(TabItemWidget* q, int tabIndex);

    void build();

    TabItemWidget* const q;
    const int tabIndex;
    vexa::widgets::EditBox* nameEdit = nullptr;
    vexa::widgets::EditBox* urlEdit = nullptr;
    vexa::widgets::PushButton* deleteButton = nullptr;
    QString acceptedName;
    QByteArray acceptedUrl;
    bool nameRepeated = false;

public Q_SLOTS:
    void onNameEditingFinished();
    void onEditingFinished();
};

TabItemWidget::Impl::Impl(TabItemWidget* owner, int index)
    : q(owner)
    , tabIndex(index)
{}

void TabItemWidget::Impl::build()
{
    q->setFixedHeight(rowHeight);

    nameEdit = new vexa::widgets::EditBox(q);
    nameEdit->setObjectName(QStringLiteral("tabNameEdit"));
    nameEdit->setProperty("style", QStringLiteral("lineEdit"));
    nameEdit->setFixedWidth(nameWidth);
    nameEdit->setMaxLength(nameMaxLength);

    urlEdit = new vexa::widgets::EditBox(q);
    urlEdit->setObjectName(QStringLiteral("tabUrlEdit"));
    urlEdit->setProperty("style", QStringLiteral("lineEdit"));

    deleteButton = new vexa::widgets::PushButton(q);
    deleteButton->setObjectName(QStringLiteral("tabDeleteBtn"));
    deleteButton->setProperty("imageBtn", QStringLiteral("delete"));
    deleteButton->setFixedSize(deleteSide, deleteSide);
    // Tab walks the fields only; the button is for the mouse.
    deleteButton->setFocusPolicy(Qt::NoFocus);
    deleteButton->setAutoDefault(false);

    auto* const layout = new QHBoxLayout(q);
    layout->setContentsMargins(rowMargin, 0, rowMargin, 0);
    layout->setSpacing(rowSpacing);
    layout->addWidget(nameEdit);
    layout->addWidget(urlEdit, 1);
    layout->addWidget(deleteButton);

    connect(nameEdit, &vexa::widgets::EditBox::editingFinished, this, &Impl::onNameEditingFinished);
    connect(urlEdit, &vexa::widgets::EditBox::editingFinished, this, &Impl::onEditingFinished);
    connect(deleteButton, &QPushButton::clicked, q, &TabItemWidget::sigDeleteBtnClicked);
}

void TabItemWidget::Impl::onNameEditingFinished()
{
    const QString text = nameEdit->text();
    if (text.isEmpty()) {
        nameEdit->setText(acceptedName);
        return;
    }
    acceptedName = text;
    // The dialog refuses repeated names on OK; until then the field shows the clash.
    q->setNameRepeated(Q_EMIT q->sigNameIsRepeated(acceptedName));
}

void TabItemWidget::Impl::onEditingFinished()
{
    QString text = urlEdit->text();
    if (text.isEmpty() || text.front() == QLatin1Char(' ')) {
        urlEdit->setText(QString::fromUtf8(acceptedUrl));
        return;
    }
    const bool marked =
        std::any_of(schemeMarkers.begin(), schemeMarkers.end(),
                    [&text](const QString& marker) { return text.contains(marker); });
    if (!marked) {
        text.prepend(QStringLiteral("https://"));
        urlEdit->setText(text);
    }
    acceptedUrl = text.toUtf8();
}

TabItemWidget::TabItemWidget(int tabIndex, const QString& name, const QString& address,
                             QWidget* parent)
    : QWidget(parent)
    , d(std::make_unique<Impl>(this, tabIndex))
{
    d->build();
    d->acceptedName = name;
    d->acceptedUrl = address.toUtf8();
    d->nameEdit->setText(name);
    d->urlEdit->setText(address);
}

TabItemWidget::~TabItemWidget() = default;

int TabItemWidget::tabIndex() const
{
    return d->tabIndex;
}

QString TabItemWidget::name() const
{
    return d->acceptedName;
}

QByteArray TabItemWidget::address() const
{
    return d->acceptedUrl;
}

STWebTab TabItemWidget::tab() const
{
    STWebTab tab;
    tab.name = d->acceptedName.toStdString();
    tab.url = d->acceptedUrl.toStdString();
    tab.tabIndex = d->tabIndex;
    return tab;
}

QLineEdit* TabItemWidget::nameEditor() const
{
    return qobject_cast<QLineEdit*>(d->nameEdit->focusProxy());
}

QLineEdit* TabItemWidget::addressEditor() const
{
    return qobject_cast<QLineEdit*>(d->urlEdit->focusProxy());
}

void TabItemWidget::setDeleteEnabled(bool enabled)
{
    d->deleteButton->setEnabled(enabled);
}

bool TabItemWidget::isDeleteEnabled() const
{
    return d->deleteButton->isEnabled();
}

void TabItemWidget::setNameRepeated(bool repeated)
{
    d->nameRepeated = repeated;
    d->nameEdit->setEditProperty("style", repeated ? QStringLiteral("editError") : QString());
}

bool TabItemWidget::isNameRepeated() const
{
    return d->nameRepeated;
}

void TabItemWidget::setPosition(int position)
{
    nameField(d->nameEdit, trKey("WebTabNameField").arg(position));
    nameField(d->urlEdit, trKey("WebTabAddressField").arg(position));
    const QString deleteText = trKey("DeleteWebTab").arg(position);
    d->deleteButton->setAccessibleName(deleteText);
    d->deleteButton->setToolTip(deleteText);
}

} // namespace vexa::inputsource

#include "tabitemwidget.moc"
