// SPDX-License-Identifier: MIT
#pragma once

#include <vexainputsourcewidget/inputsourcemetatypes.h>
#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <cstdint>
#include <optional>

class QMimeData;

namespace zq::mediacore {
class IMeta;
} // namespace zq::mediacore

namespace vexa::inputsource {

/// What a tile's drag carries to the host's drop targets: one QMimeData with seven formats,
/// each a byte array.
///
/// | format | value |
/// |---|---|
/// | "materialId", "resId" | the source id as decimal text |
/// | "meta" | the address of the source's zq::mediacore::IMeta as the pointer's own bytes in
/// machine order (zeros without one); valid only in this process while the drag lasts | | "webMode"
/// | "0" when the meta answer's flag is true (every kind but a web page captured from the screen),
/// else "1" | | "damaged" | a QDataStream (default version) holding one bool: the meta's lost flag,
/// false without a meta | | "type", "size" | the constant "1" |
///
/// The readers below are for drop targets in the same process. GUI thread (QMimeData is not
/// shared between threads).
class VEXAINPUTSOURCEWIDGET_EXPORT InputSourceDragPayload
{
public:
    /// The payload of a drag of source `id`; `meta` is the box's answer to the tile's meta
    /// query. The caller owns the result.
    static QMimeData* make(uint64_t id, const MetaQueryResult& meta);

    /// Whether `data` carries every format above.
    static bool isPayload(const QMimeData& data);

    /// The source id of "materialId"; nothing when it is missing or not a decimal number.
    static std::optional<uint64_t> sourceId(const QMimeData& data);

    /// The media description "meta" points to, or null. Valid only while the drag lasts: the
    /// dragging tile holds the description until its drag returns.
    static const zq::mediacore::IMeta* meta(const QMimeData& data);

    /// The lost flag of "damaged"; false when it is missing or unreadable.
    static bool isDamaged(const QMimeData& data);

    /// Whether "webMode" says the source renders natively ("0").
    static bool isNative(const QMimeData& data);
};

} // namespace vexa::inputsource
