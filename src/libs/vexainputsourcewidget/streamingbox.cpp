#include <vexainputsourcewidget/streamingbox.h>

#include "manageraccess.h"
#include "modalloop.h"
#include "trkey.h"

#include <vexainputsourcewidget/stinputsource.h>
#include <vexainputsourcewidget/streamingdialog.h>

#include <vexa/diagnostics/warning.h>
#include <vexa/widgets/tipdialog.h>

#include <QCoreApplication>
#include <QObject>
#include <QPointer>

#include <algorithm>

#include <vector>

namespace vexa::inputsource {

namespace {

// The dialogs live apart from their boxes, so the process collects them: they go while the
// application object is destroyed, when widgets may still be destroyed. GUI thread only.
std::vector<QPointer<StreamingDialog>>& unownedDialogs()
{
    static std::vector<QPointer<StreamingDialog>> dialogs;
    return dialogs;
}

void destroyUnownedDialogs()
{
    std::vector<QPointer<StreamingDialog>> dialogs;
    dialogs.swap(unownedDialogs());
    for (const QPointer<StreamingDialog>& dialog : dialogs) {
        delete dialog.data();
    }
}

StreamingDialog* createUnownedDialog()
{
    std::vector<QPointer<StreamingDialog>>& dialogs = unownedDialogs();
    if (dialogs.empty()) {
        qAddPostRoutine(destroyUnownedDialogs);
    }
    // Dialogs destroyed otherwise (by a host, say) leave no entry behind.
    dialogs.erase(
        std::remove_if(dialogs.begin(), dialogs.end(),
                       [](const QPointer<StreamingDialog>& dialog) { return dialog.isNull(); }),
        dialogs.end());
    auto* const dialog = new StreamingDialog;
    dialogs.emplace_back(dialog);
    return dialog;
}

} // namespace

class StreamingBox::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(StreamingBox* q)
        : q(q)
    {}

    // The box's current binding, for one use.
    ManagerAccess access() const;

    StreamingBox* const q;
    StreamingDialog* const dialog = createUnownedDialog();
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
    {
        const std::shared_ptr<IInputSourceMgr> mgr = access().lock(VEXA_HERE);
        // A read the manager allows on the GUI thread: the dialog waits for the answer.
        if (mgr == nullptr || !mgr->isNameRepeated(name.toStdString())) {
            return false;
        }
    }
    vexa::widgets::TipDialog tip(vexa::widgets::TipDialog::Notice);
    tip.setTipText(trKey("NameAlreadyExists"));
    tip.setBtnText(trKey("OK"), QString(), QString());
    // Also when the box went while the notice was open, the name stays refused.
    ModalLoop::run(
        const_cast<Impl*>(this), [&tip] { tip.run(); }, &tip);
    return true;
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

} // namespace vexa::inputsource

#include "streamingbox.moc"
