// SPDX-License-Identifier: MIT
#pragma once

#include "logcategory.h"
#include "manageraccess.h"
#include "tileindex.h"

#include <vexainputsourcewidget/inputsourcebox.h>
#include <vexainputsourcewidget/inputsourceitem.h>
#include <vexainputsourcewidget/inputsourcemetatypes.h>

#include <quandel/resource/iresource.h>
#include <sigslot/signal.h>
#include <vexa/widgets/tipdialog.h>

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <vector>

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace XJ::Utils {
class FlowLayout;
} // namespace XJ::Utils

namespace vexa::widgets {
class PushButton;
} // namespace vexa::widgets

namespace vexa::inputsource {

class ManagerRelay;

// The queued slots below spell their parameter types exactly as the relay names them, so that
// Qt finds them by name.
using quandel::resource::IResource;
using vexa::STResourceRenamedModel;

// The box's state. inputsourcebox.cpp holds the frame, the tiles and the selection;
// inputsourceboxbinding.cpp the manager binding, the reactions to its notifications and the
// commands sent to it.
class InputSourceBox::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(InputSourceBox* q);
    ~Impl() override;

    // Frame, tiles and selection.
    void buildFrame();
    void connectFrame();
    InputSourceItem* createItem(uint64_t id, const IResource& resource,
                                const zq::mediacore::IMeta& meta);
    void appendItem(uint64_t id, InputSourceItem* item);
    void placeNewItems();
    void removeItem(InputSourceItem* item);
    void discardItem(InputSourceItem* item);
    void deleteItem(uint64_t id);
    std::vector<InputSourceItem*> items() const;
    bool isInUse(uint64_t id) const;
    bool isCaptureBox() const;

    // Binding.
    void bind(const std::shared_ptr<IInputSourceMgr>& mgr);
    void unbind();
    // Asks the operator through a tip dialog; true when the first button was pressed, nothing
    // when the box went while the question was open.
    std::optional<bool> ask(vexa::widgets::TipDialog::EnumTipType type, const QString& text,
                            const QString& confirm, const QString& cancel);
    std::optional<bool> confirmDelete(const char* key);
    // The batch delete; false when the box went while its question was open.
    bool batchDelete();
    // Applies one rename; false when the box went while its notice was open.
    bool applyRename(const vexa::diagnostics::CallSite& site, const STResourceRenamedModel& model);

    InputSourceBox* const q;
    ManagerAccess manager;
    quandel::msgcenter::IMsgCenterMgr* msgCenter = nullptr;
    QPushButton* titleButton = nullptr;
    QLabel* arrowLabel = nullptr;
    QLabel* titleLabel = nullptr;
    vexa::widgets::PushButton* previewButton = nullptr;
    vexa::widgets::PushButton* addButton = nullptr;
    QVBoxLayout* boxLayout = nullptr;
    QWidget* header = nullptr;
    QWidget* itemArea = nullptr;
    XJ::Utils::FlowLayout* flowLayout = nullptr;
    std::vector<uint64_t> selection;
    quandel::resource::EnResourceType resourceType = quandel::resource::EnResourceType::Unassigned;
    QString loadingPath;
    TileIndex index;
    // The binding to the current manager; a new one for every binding, so that nothing of a
    // previous manager reaches the box once it is detached.
    std::shared_ptr<ManagerRelay> relay;
    std::vector<sigslot::connection> connections;
    // New tiles, shown and placed by the flow layout once per notification rather than one by
    // one.
    std::vector<QPointer<InputSourceItem>> unplaced;
    // Renames wait here while a notice about an earlier one is open, so that notices come one
    // at a time and renames apply in the manager's order.
    std::deque<STResourceRenamedModel> pendingRenames;
    bool renaming = false;

public Q_SLOTS:
    void slotTitleToggled(bool isChecked);
    void slotPreviewClicked(bool isChecked);
    void slotItemPreviewChanged(uint64_t id, bool isOpen);
    void slotItemSelect(uint64_t id);
    void slotBatchSelect(uint64_t id, bool bSelect);
    void slotItemDelete(uint64_t id);
    void slotBatchDelete();
    void slotItemNameChanged(uint64_t id, const QString& name);
    bool slotCheckMultiSelect();
    void slotCaptResolutionChanged(uint64_t id, const quandel::CaptResolutionsInfo& captInfo);
    MetaQueryResult slotGetInputSourceMeta(uint64_t id);
    void slotItemEdit(uint64_t id);

    // Manager notifications, queued by name from the runtime thread.
    void addItem(uint64_t id, std::shared_ptr<IResource> resource);
    void updateItem(uint64_t id, std::shared_ptr<zq::mediacore::IMeta> meta);
    void updateItemOnlineStatus(uint64_t id, bool isOnline);
    void deleteItems(const std::vector<uint64_t>& ids);
    void clearItems();
    void renameItem(const STResourceRenamedModel& model);
    void resolutionUpdated(const STInputSource& info);
    void captResolutionUpdated(const STInputSource& info);
    void resolutionError(const quandel::CaptResolutionsInfo& info);
    void urlUpdated(const STInputSource& info);
    void previewedItems(const std::vector<STInputSource>& infos);
    void onlineTimeUpdateUi(const QVariant& times);
};

} // namespace vexa::inputsource
