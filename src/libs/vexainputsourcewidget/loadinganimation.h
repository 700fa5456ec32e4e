#pragma once

#include <vexainputsourcewidget/vexainputsourcewidget_export.h>

#include <QString>

#include <memory>

class QMovie;

namespace vexa::inputsource {

/// One loading animation per file, shared by every tile that shows it: a panel of tiles waiting
/// for their first frames then costs one timer and one decoder, not one per tile. It moves while
/// at least one viewer asks for it and stands still otherwise.
///
/// GUI thread only.
class VEXAINPUTSOURCEWIDGET_TEST_EXPORT LoadingAnimation
{
public:
    /// The animation of `path`, shared with everyone else who asked for the same file and still
    /// holds it; made when nobody does.
    static std::shared_ptr<LoadingAnimation> forFile(const QString& path);

    ~LoadingAnimation();

    LoadingAnimation(const LoadingAnimation&) = delete;
    LoadingAnimation& operator=(const LoadingAnimation&) = delete;

    /// The movie the viewers' labels show. Owned here.
    QMovie* movie() const;

    /// A viewer starts or stops watching; the movie runs while anyone watches.
    void addViewer();
    void removeViewer();

    /// How many watch now.
    int viewers() const;

private:
    explicit LoadingAnimation(const QString& path);

    struct Impl;
    std::unique_ptr<Impl> const d;
};

} // namespace vexa::inputsource
