// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/capturecardbox.h>

#include "logcategory.h"
#include "manageraccess.h"

#include <QObject>

namespace vexa::inputsource {

// A child of the box with an object name, so that a host can reach its slots by name.
class CaptureCardBox::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(CaptureCardBox* owner)
        : QObject(owner)
        , q(owner)
    {
        setObjectName(QStringLiteral("captureCardBoxImpl"));
    }

    CaptureCardBox* const q;
    quandel::IZQRuntime* runtime = nullptr;

public Q_SLOTS:
    // Retranslation is the base box's and the tiles': nothing here shows a text of its own.
    void slotTranslateLanguage() {}

    void slotUpdateDevice(bool isArrival);
};

void CaptureCardBox::Impl::slotUpdateDevice(bool isArrival)
{
    // A removed device leaves through the manager's own removal notification.
    if (!isArrival) {
        return;
    }
    ManagerAccess access;
    access.setManager(q->inputSourceMgr());
    // A read of the hardware the manager allows on the GUI thread, so no runtime round trip.
    if (const std::shared_ptr<IInputSourceMgr> mgr = access.lock(VEXA_HERE)) {
        mgr->refreshCaptureDevices();
    }
}

CaptureCardBox::CaptureCardBox(QWidget* parent)
    : InputSourceBox(parent)
    , d(std::make_unique<Impl>(this))
{
    setTitle(QStringLiteral("CaptureCard"));
    setResourceType(quandel::resource::EnResourceType::LocalCaptureDevice);
    setAddBtnVisible(false);
    connect(this, &InputSourceBox::signalTranslateLanguage, d.get(), &Impl::slotTranslateLanguage);
}

CaptureCardBox::~CaptureCardBox() = default;

void CaptureCardBox::setZQRuntime(quandel::IZQRuntime* runtime)
{
    d->runtime = runtime;
    InputSourceBox::setZQRuntime(runtime);
}

} // namespace vexa::inputsource

#include "capturecardbox.moc"
