// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/streamingbox.h>

#include "logcategory.h"
#include "manageraccess.h"
#include "modalloop.h"
#include "namenotice.h"
#include "parentlessdialogs.h"

#include <vexainputsourcewidget/stinputsource.h>
#include <vexainputsourcewidget/streamingdialog.h>

#include <QObject>

#include <vector>

namespace vexa::inputsource {

class StreamingBox::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(StreamingBox* owner)
        : q(owner)
    {}

    // The box's current binding, for one use.
    ManagerAccess access() const;

    StreamingBox* const q;
    StreamingDialog* const dialog = ParentlessDialogs::adopt(new StreamingDialog);
    quandel::IZQRuntime* runtime = nullptr;

public Q_SLOTS:
    void slotAddStreaming(const QString& name, const QString& url) const;
    void slotTranslateLanguage();
    bool slotCheckNameRepeated(const QString& name) const;
};

ManagerAccess StreamingBox::Impl::access() const
{
    ManagerAccess access;
    access.setManager(q->inputSourceMgr());
    access.setRuntime(runtime);
    return access;
}

void StreamingBox::Impl::slotAddStreaming(const QString& name, const QString& url) const
{
    STInputSource source;
    source.name = name.toStdString();
    source.address = url.toStdString();
    source.sourceType = quandel::resource::toCode(quandel::resource::EnResourceType::NetworkStream);
    access().send(VEXA_HERE, "slotAddStreaming",
                  [sources = std::vector<STInputSource>{source}](IInputSourceMgr& mgr) {
                      mgr.addInputSources(sources);
                  });
}

void StreamingBox::Impl::slotTranslateLanguage()
{
    dialog->translateLanguage();
}

bool StreamingBox::Impl::slotCheckNameRepeated(const QString& name) const
{
    return NameNotice::isTaken(access(), VEXA_HERE, const_cast<Impl*>(this), name);
}

StreamingBox::StreamingBox(QWidget* parent)
    : InputSourceBox(parent)
    , d(std::make_unique<Impl>(this))
{
    setTitle(QStringLiteral("Streaming"));
    setResourceType(quandel::resource::EnResourceType::NetworkStream);
    connect(this, &InputSourceBox::signalAddClicked, this, &StreamingBox::showDialog);
    connect(this, &InputSourceBox::signalTranslateLanguage, d.get(), &Impl::slotTranslateLanguage);
    connect(d->dialog, &StreamingDialog::signalConfirmClicked, d.get(), &Impl::slotAddStreaming);
    // Direct, so that the dialog's signal returns the answer.
    connect(d->dialog, &StreamingDialog::signalNameEditIsRepeated, d.get(),
            &Impl::slotCheckNameRepeated, Qt::DirectConnection);
}

StreamingBox::~StreamingBox() = default;

void StreamingBox::setZQRuntime(quandel::IZQRuntime* runtime)
{
    d->runtime = runtime;
    InputSourceBox::setZQRuntime(runtime);
}

void StreamingBox::showDialog()
{
    {
        const std::shared_ptr<IInputSourceMgr> mgr = d->access().lock(VEXA_HERE);
        if (mgr == nullptr) {
            return;
        }
        d->dialog->setMediaName(QString::fromStdString(mgr->generateStreamingName()));
    }
    StreamingDialog* const dialog = d->dialog;
    // Adding happens through signalConfirmClicked while the dialog is open; how it closed does
    // not matter. When the box goes meanwhile, the dialog is closed and nothing here is touched.
    ModalLoop::run(
        d.get(), [dialog] { dialog->exec(); }, dialog);
}

StreamingDialog* StreamingBox::dialog() const
{
    return d->dialog;
}

} // namespace vexa::inputsource

#include "streamingbox.moc"
