// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/inputsourcedragpayload.h>

#include <zq/mediacore/imeta.h>

#include <QByteArray>
#include <QDataStream>
#include <QMimeData>
#include <QStringList>

#include <cstring>

namespace vexa::inputsource {

namespace {

const QStringList& formats()
{
    static const QStringList names{QStringLiteral("materialId"), QStringLiteral("resId"),
                                   QStringLiteral("meta"),       QStringLiteral("webMode"),
                                   QStringLiteral("damaged"),    QStringLiteral("type"),
                                   QStringLiteral("size")};
    return names;
}

} // namespace

QMimeData* InputSourceDragPayload::make(uint64_t id, const MetaQueryResult& meta)
{
    const std::shared_ptr<zq::mediacore::IMeta>& description = std::get<0>(meta);
    const zq::mediacore::IMeta* const address = description.get();
    const QByteArray idText = QByteArray::number(static_cast<qulonglong>(id));

    QByteArray damaged;
    {
        QDataStream stream(&damaged, QIODevice::WriteOnly);
        stream << (description ? description->getLost() : false);
    }

    auto* const payload = new QMimeData;
    payload->setData(QStringLiteral("materialId"), idText);
    payload->setData(QStringLiteral("resId"), idText);
    payload->setData(QStringLiteral("meta"),
                     QByteArray(reinterpret_cast<const char*>(&address), sizeof address));
    payload->setData(QStringLiteral("webMode"), QByteArray(std::get<1>(meta) ? "0" : "1"));
    payload->setData(QStringLiteral("damaged"), damaged);
    payload->setData(QStringLiteral("type"), QByteArray("1"));
    payload->setData(QStringLiteral("size"), QByteArray("1"));
    return payload;
}

bool InputSourceDragPayload::isPayload(const QMimeData& data)
{
    for (const QString& format : formats()) {
        if (!data.hasFormat(format)) {
            return false;
        }
    }
    return true;
}

std::optional<uint64_t> InputSourceDragPayload::sourceId(const QMimeData& data)
{
    bool ok = false;
    const qulonglong id = data.data(QStringLiteral("materialId")).toULongLong(&ok);
    if (!ok) {
        return std::nullopt;
    }
    return static_cast<uint64_t>(id);
}

const zq::mediacore::IMeta* InputSourceDragPayload::meta(const QMimeData& data)
{
    const QByteArray bytes = data.data(QStringLiteral("meta"));
    const zq::mediacore::IMeta* address = nullptr;
    if (bytes.size() != static_cast<int>(sizeof address)) {
        return nullptr;
    }
    std::memcpy(&address, bytes.constData(), sizeof address);
    return address;
}

bool InputSourceDragPayload::isDamaged(const QMimeData& data)
{
    QDataStream stream(data.data(QStringLiteral("damaged")));
    bool damaged = false;
    stream >> damaged;
    return stream.status() == QDataStream::Ok && damaged;
}

bool InputSourceDragPayload::isNative(const QMimeData& data)
{
    return data.data(QStringLiteral("webMode")) == "0";
}

} // namespace vexa::inputsource
