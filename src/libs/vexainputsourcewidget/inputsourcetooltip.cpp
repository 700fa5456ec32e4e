// SPDX-License-Identifier: MIT
#include "inputsourcetooltip.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <QVariant>

namespace vexa::inputsource {

namespace {

constexpr int keyWidth = 72;
constexpr int valueMinimumWidth = 120;
constexpr int rowSpacing = 8;

} // namespace

struct InputSourceToolTip::Impl
{
    explicit Impl(InputSourceToolTip* toolTip)
        : q(toolTip)
        , rows(new QVBoxLayout(toolTip))
    {
        // No left margin: the keys are right-aligned in their own column, which already keeps
        // them off the edge.
        rows->setContentsMargins(0, 8, 8, 8);
    }

    InputSourceToolTip* const q;
    QVBoxLayout* const rows;
};

InputSourceToolTip::InputSourceToolTip(QWidget* parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint)
    , d(std::make_unique<Impl>(this))
{
    // A plain QWidget ignores the style sheet's background unless asked to draw it.
    setAttribute(Qt::WA_StyledBackground);
    // The window opens under the pointer's tile; taking the mouse would end the hover that
    // keeps it open.
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setProperty("style", QStringLiteral("BG1"));
}

InputSourceToolTip::~InputSourceToolTip() = default;

void InputSourceToolTip::setContent(const QVector<Row>& rows)
{
    for (const Row& row : rows) {
        // Values are names and addresses the operator typed; as plain text a "<" stays a "<".
        auto* const key = new QLabel(row.first, this);
        key->setObjectName(QStringLiteral("tipKey"));
        key->setTextFormat(Qt::PlainText);
        key->setFixedWidth(keyWidth);
        key->setAlignment(Qt::AlignRight);

        auto* const value = new QLabel(row.second, this);
        value->setObjectName(QStringLiteral("tipValue"));
        value->setTextFormat(Qt::PlainText);
        value->setMinimumWidth(valueMinimumWidth);

        auto* const line = new QHBoxLayout;
        line->setContentsMargins(0, 0, 0, 0);
        line->setSpacing(rowSpacing);
        line->addWidget(key);
        line->addWidget(value);
        d->rows->addLayout(line);
    }
}

} // namespace vexa::inputsource
