// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/webbox.h>

#include "logcategory.h"
#include "manageraccess.h"
#include "modalloop.h"
#include "namenotice.h"
#include "parentlessdialogs.h"
#include "trkey.h"

#include <vexainputsourcewidget/stweboperation.h>
#include <vexainputsourcewidget/webdialog.h>

#include <quandel/resource/iresource.h>
#include <zq/mediacore/imeta.h>
#include <zqctuils/indexgenerator.h>

#include <QObject>
#include <QPointer>
#include <QStringList>

namespace vexa::inputsource {

namespace {

const char* const webResourceGoneText = "nullptr == webResource";

// What the dialog edits of a source: its name, mode and tabs as its media description gives
// them; a source without one is edited from its name alone.
STWebDescription describe(const quandel::resource::IResource& resource)
{
    STWebDescription description;
    const std::shared_ptr<zq::mediacore::IMeta> meta = resource.getMeta();
    description.name =
        meta != nullptr && !meta->getName().empty() ? meta->getName() : resource.getName();
    description.webName = description.name;
    if (meta == nullptr) {
        return description;
    }
    description.address = meta->getAddress();
    description.webMode = meta->getWebMode();
    description.currentTabIndex = meta->getWebCurrentTabIndex();
    for (const zq::mediacore::WebTab& tab : meta->getWebTabs()) {
        description.webTabs.push_back(STWebTab{tab.name, tab.url, tab.index});
    }
    return description;
}

} // namespace

class WebBox::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(WebBox* owner)
        : q(owner)
        , dialogAlive(dialog)
    {}
    ~Impl() override;

    // The box's current binding, for one use.
    ManagerAccess access() const;
    // The add-mode contents: the next free name and one tab showing the home page.
    STWebDescription newPage(IInputSourceMgr& mgr) const;

    WebBox* const q;
    WebDialog* const dialog = ParentlessDialogs::adopt(new WebDialog);
    // A host may have destroyed the dialog before the box.
    const QPointer<WebDialog> dialogAlive;
    quandel::IZQRuntime* runtime = nullptr;
    QString languageCode;

public Q_SLOTS:
    void slotTranslateLanguage();
    void slotItemEdit(uint64_t id);
    void slotAddClicked();
    void slotDoubleClicked(uint64_t id);
    bool slotCheckNameRepeated(const QString& name) const;
};

WebBox::Impl::~Impl()
{
    // The dialog outlives the box; it must follow nothing of the box's any more.
    if (!dialogAlive.isNull()) {
        dialog->unsetInputSourceMgr();
        dialog->setMsgCenterMgr(nullptr);
    }
}

ManagerAccess WebBox::Impl::access() const
{
    ManagerAccess access;
    access.setManager(q->inputSourceMgr());
    access.setRuntime(runtime);
    return access;
}

STWebDescription WebBox::Impl::newPage(IInputSourceMgr& mgr) const
{
    // Numbered among all sources, as a name must be free among all of them.
    QStringList names;
    for (const IInputSourceMgr::ResourcePtr& resource : mgr.getResources()) {
        if (resource != nullptr) {
            names << QString::fromStdString(resource->getName());
        }
    }
    const QString prefix = trKey("WebPage");
    STWebDescription description;
    description.name =
        QString(prefix + QString::number(zqctuils::IndexGenerator::generateIndex(names, prefix)))
            .toStdString();
    description.webName = description.name;
    STWebTab tab;
    tab.name = QString(trKey("WebTab") + QLatin1Char('1')).toStdString();
    tab.url = dialog->homePageFor(languageCode).toStdString();
    tab.tabIndex = 1;
    description.address = tab.url;
    description.currentTabIndex = tab.tabIndex;
    description.webTabs.push_back(std::move(tab));
    return description;
}

void WebBox::Impl::slotTranslateLanguage()
{
    dialog->translateLanguage();
}

void WebBox::Impl::slotItemEdit(uint64_t id)
{
    q->showDialog(Edit, id);
}

void WebBox::Impl::slotAddClicked()
{
    q->showDialog(Add, 0);
}

void WebBox::Impl::slotDoubleClicked(uint64_t id)
{
    const ManagerAccess manager = access();
    // The message this box has always written here, although the test is on the manager.
    const std::shared_ptr<IInputSourceMgr> mgr = manager.lock(VEXA_HERE, webResourceGoneText);
    if (mgr == nullptr) {
        return;
    }
    STWebOperation operation;
    operation.kind = 1;
    operation.id = id;
    manager.call(VEXA_HERE, "slotDoubleClicked",
                 [mgr, operation] { mgr->webOperation(operation); });
}

bool WebBox::Impl::slotCheckNameRepeated(const QString& name) const
{
    return NameNotice::isTaken(access(), VEXA_HERE, const_cast<Impl*>(this), name);
}

WebBox::WebBox(QWidget* parent)
    : InputSourceBox(parent)
    , d(std::make_unique<Impl>(this))
{
    setTitle(QStringLiteral("Web"));
    setResourceType(quandel::resource::EnResourceType::WebPage);
    connect(this, &InputSourceBox::signalAddClicked, d.get(), &Impl::slotAddClicked);
    connect(this, &InputSourceBox::signalDoubleClicked, d.get(), &Impl::slotDoubleClicked);
    connect(this, &InputSourceBox::signalItemEdit, d.get(), &Impl::slotItemEdit);
    connect(this, &InputSourceBox::signalTranslateLanguage, d.get(), &Impl::slotTranslateLanguage);
    connect(this, &InputSourceBox::signalMgrSettingFinished, d->dialog,
            &WebDialog::setInputSourceMgr);
    connect(this, &InputSourceBox::signalMgrUnsettingFinished, d->dialog,
            &WebDialog::unsetInputSourceMgr);
    // Direct, so that the dialog's signal returns the answer.
    connect(d->dialog, &WebDialog::signalNameEditIsRepeated, d.get(), &Impl::slotCheckNameRepeated,
            Qt::DirectConnection);
}

WebBox::~WebBox() = default;

void WebBox::setZQRuntime(quandel::IZQRuntime* runtime)
{
    d->runtime = runtime;
    InputSourceBox::setZQRuntime(runtime);
}

void WebBox::setMsgCenterMgr(quandel::msgcenter::IMsgCenterMgr* msgCenter)
{
    d->dialog->setMsgCenterMgr(msgCenter);
    InputSourceBox::setMsgCenterMgr(msgCenter);
}

void WebBox::setLanguageCode(const QString& code)
{
    d->languageCode = code;
    d->dialog->setLanguageCode(code);
}

QString WebBox::languageCode() const
{
    return d->languageCode;
}

void WebBox::setHomePages(const QString& simplifiedChinese, const QString& other)
{
    d->dialog->setHomePages(simplifiedChinese, other);
}

void WebBox::showDialog(const Mode mode, const uint64_t id)
{
    {
        const std::shared_ptr<IInputSourceMgr> mgr = d->access().lock(VEXA_HERE);
        if (mgr == nullptr) {
            return;
        }
        if (mode == Edit) {
            // A read the manager allows on the GUI thread.
            const IInputSourceMgr::ResourcePtr resource = mgr->getResourceById(id);
            if (resource == nullptr) {
                VEXA_WARNING(webResourceGoneText);
                return;
            }
            d->dialog->setWebSource(id, describe(*resource), true);
        } else {
            d->dialog->setWebSource(0, d->newPage(*mgr), false);
        }
    }
    WebDialog* const dialog = d->dialog;
    // What the dialog sends happens while it is open; how it closed does not matter. When the
    // box goes meanwhile, the dialog is closed and nothing here is touched.
    ModalLoop::run(
        d.get(), [dialog] { dialog->exec(); }, dialog);
}

WebDialog* WebBox::dialog() const
{
    return d->dialog;
}

} // namespace vexa::inputsource

#include "webbox.moc"
