// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QTest>
#include <QWidget>

#include <utility>

/// The shipped languages as the rows of a data-driven test, in the column "language".
inline void addLanguageRows()
{
    QTest::addColumn<QString>("language");
    for (const char* code : {"zh_CN", "zh_TW", "en_US"}) {
        QTest::newRow(code) << QString::fromLatin1(code);
    }
}

/// Whether `text` fits into `room` pixels in `widget`'s font, and what a failure says.
inline std::pair<bool, QString> fits(const QWidget* widget, const QString& text, int room)
{
    const int needed = widget->fontMetrics().horizontalAdvance(text);
    return {needed <= room, QStringLiteral("%1 \"%2\": %3 px needed, %4 px room")
                                .arg(widget->objectName(), text)
                                .arg(needed)
                                .arg(room)};
}
