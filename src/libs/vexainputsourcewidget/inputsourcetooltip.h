// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <QPair>
#include <QString>
#include <QVector>
#include <QWidget>

#include <memory>

namespace vexa::inputsource {

/// The small window that lists a source's details (key and value rows) under its tile while
/// the pointer is over the tile. It ignores the mouse, so it never takes the hover from the
/// tile. GUI thread only.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT InputSourceToolTip : public QWidget
{
    Q_OBJECT

public:
    /// One row: the translated key and its value.
    using Row = QPair<QString, QString>;

    /// A frameless tool window without rows.
    explicit InputSourceToolTip(QWidget* parent = nullptr);
    ~InputSourceToolTip() override;

    /// Appends one row per pair, in order.
    void setContent(const QVector<Row>& rows);

private:
    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::inputsource
