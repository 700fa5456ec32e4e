#include "loadinganimation.h"

#include <QHash>
#include <QMovie>

namespace vexa::inputsource {

struct LoadingAnimation::Impl
{
    explicit Impl(const QString& path)
        : movie(path, QByteArray())
    {
        // Every tile shows the same few frames over and over: decode them once.
        movie.setCacheMode(QMovie::CacheAll);
    }

    void follow()
    {
        if (viewers > 0) {
            if (movie.state() == QMovie::NotRunning) {
                movie.start();
            } else if (movie.state() == QMovie::Paused) {
                movie.setPaused(false);
            }
        } else if (movie.state() == QMovie::Running) {
            movie.setPaused(true);
        }
    }

    QMovie movie;
    int viewers = 0;
};

std::shared_ptr<LoadingAnimation> LoadingAnimation::forFile(const QString& path)
{
    // Weak, so that the animation goes with the last tile that shows it.
    static QHash<QString, std::weak_ptr<LoadingAnimation>> animations;
    std::shared_ptr<LoadingAnimation> animation = animations.value(path).lock();
    if (!animation) {
        animation.reset(new LoadingAnimation(path));
        animations.insert(path, animation);
    }
    return animation;
}

LoadingAnimation::LoadingAnimation(const QString& path)
    : d(std::make_unique<Impl>(path))
{}

LoadingAnimation::~LoadingAnimation() = default;

QMovie* LoadingAnimation::movie() const
{
    return &d->movie;
}

void LoadingAnimation::addViewer()
{
    ++d->viewers;
    d->follow();
}

void LoadingAnimation::removeViewer()
{
    if (d->viewers > 0) {
        --d->viewers;
    }
    d->follow();
}

int LoadingAnimation::viewers() const
{
    return d->viewers;
}

} // namespace vexa::inputsource
