// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/ndibox.h>

#include <vexainputsourcewidget/inputsourcemetatypes.h>

#include "modalloop.h"
#include "ndidialog.h"

#include <QCoreApplication>
#include <QPointer>

namespace vexa::inputsource {

class NdiBox::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(NdiBox* q);
    ~Impl() override;

    NdiBox* const q;
    // No parent: the dialog is a window of its own and may outlive the box while it is open.
    NdiDialog* const dialog;

public Q_SLOTS:
    void slotTranslateLanguage();
    void openDialog();
};

NdiBox::Impl::Impl(NdiBox* owner)
    : q(owner)
    , dialog(new NdiDialog(nullptr))
{}

NdiBox::Impl::~Impl()
{
    if (!dialog->isVisible()) {
        ModalLoop::destroy(dialog);
        return;
    }
    // The operator may finish with the open dialog; it goes when it closes, or at the latest
    // when the application quits.
    connect(dialog, &QDialog::finished, dialog, &QObject::deleteLater);
    if (QCoreApplication* const application = QCoreApplication::instance()) {
        connect(application, &QCoreApplication::aboutToQuit, dialog, &QObject::deleteLater);
    }
}

void NdiBox::Impl::slotTranslateLanguage()
{
    dialog->translateLanguage();
}

void NdiBox::Impl::openDialog()
{
    // The dialog is the loop's owner, not the box: the box may go while the operator is
    // choosing, and the dialog stays. Nothing here is touched after the loop.
    ModalLoop::run(dialog, [dialog = dialog] { dialog->exec(); });
}

NdiBox::NdiBox(QWidget* parent)
    : InputSourceBox(parent)
    , d(std::make_unique<Impl>(this))
{
    setTitle(QStringLiteral("NDI"));
    setResourceType(quandel::resource::EnResourceType::NdiSource);
    connect(this, &InputSourceBox::signalAddClicked, this, &NdiBox::showDialog);
    connect(this, &InputSourceBox::signalTranslateLanguage, d.get(), &Impl::slotTranslateLanguage);
    connect(this, &InputSourceBox::signalMgrSettingFinished, d->dialog,
            &NdiDialog::setInputSourceMgr);
    connect(this, &InputSourceBox::signalMgrUnsettingFinished, d->dialog,
            &NdiDialog::unsetInputSourceMgr);
}

NdiBox::~NdiBox() = default;

void NdiBox::showDialog()
{
    d->openDialog();
}

vexa::widgets::Dialog* NdiBox::dialog() const
{
    return d->dialog;
}

} // namespace vexa::inputsource

#include "ndibox.moc"
