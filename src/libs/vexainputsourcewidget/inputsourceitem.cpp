// SPDX-License-Identifier: MIT
#include <vexainputsourcewidget/inputsourceitem.h>

#include "diplaywind.h"
#include "inputsourcetooltip.h"
#include "logcategory.h"
#include "modalloop.h"
#include "queuedhandoff.h"
#include "trkey.h"

#include <vexainputsourcewidget/inputsourcedragpayload.h>

#include <quandel/resource/enresourcetype.h>
#include <vexa/widgets/combobox.h>
#include <vexa/widgets/editbox.h>
#include <vexa/widgets/elidinglabel.h>
#include <vexa/widgets/pushbutton.h>
#include <vexa/widgets/quietlayout.h>
#include <vexa/widgets/style.h>
#include <zq/mediacore/iframe.h>
#include <zq/mediacore/imeta.h>
#include <zqctuils/floatcomparison.h>

#include <QAction>
#include <QContextMenuEvent>
#include <QCursor>
#include <QDrag>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QMovie>
#include <QPointer>
#include <QTimer>
#include <QVBoxLayout>
#include <QVariant>

#include <atomic>
#include <cmath>
#include <limits>

namespace vexa::inputsource {

namespace {

using quandel::resource::EnResourceType;
using quandel::resource::toCode;

constexpr int ndiKind = toCode(EnResourceType::NdiSource);
constexpr int captureKind = toCode(EnResourceType::LocalCaptureDevice);
constexpr int webKind = toCode(EnResourceType::WebPage);
constexpr int streamKind = toCode(EnResourceType::NetworkStream);

constexpr int tileWidth = 170;
constexpr int thumbnailWidth = 168;
constexpr int thumbnailHeight = 88;
constexpr int loadingSide = 64;
constexpr int stateDotSide = 10;
constexpr int previewButtonSide = 20;
constexpr int durationWidth = 60;
constexpr int durationHeight = 12;
constexpr int chooserHeight = 21;
constexpr int captionElideWidth = 142;
constexpr int maxThumbnailSide = 16384;
constexpr int nameMaxLength = 20;
constexpr int dragDistance = 30;
constexpr int previewLockOutMs = 500;
constexpr int tickMs = 1000;
constexpr int singleResolutionMode = 1;
constexpr int nativeWebMode = 0;
constexpr int screenshotWebMode = 1;

// No rate was posted since the text the frames refresh was last set another way, so the next
// frame must post whatever its rate is.
constexpr int noPostedFrameRate = -1;

// Sized by the literal, not by strlen(), which not every compiler evaluates at compile time.
constexpr char onlineText[] = "state_online";
constexpr char offlineText[] = "state_offline";
constexpr QLatin1String onlineName(onlineText, sizeof onlineText - 1);
constexpr QLatin1String offlineName(offlineText, sizeof offlineText - 1);

QString runningTimeText(int seconds)
{
    const int hours = seconds / 3600;
    const int minutes = (seconds - hours * 3600) / 60;
    return QStringLiteral("%1:%2:%3")
        .arg(hours, 3, 10, QLatin1Char('0'))
        .arg(minutes, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

QString chooserEntryText(const quandel::CaptResolutionsInfo& info)
{
    // Concatenated rather than arg()-chained: the device's own text may contain "%1".
    return QString::number(info.width) + QLatin1Char('*') + QString::number(info.height) +
           QLatin1Char('@') + QString::number(static_cast<double>(info.frameRate), 'f', 2) +
           QLatin1Char(',') + QString::fromStdString(info.text);
}

// A frame that reports a rate no stream has (NaN, infinite, negative, absurdly large) must not
// reach a float-to-int conversion, which would be undefined.
int integerFrameRate(double rate)
{
    if (!std::isfinite(rate) || rate <= 0.0) {
        return 0;
    }
    constexpr double largest = std::numeric_limits<int>::max();
    return rate >= largest ? std::numeric_limits<int>::max() : static_cast<int>(rate);
}

QHBoxLayout* addRow(QVBoxLayout* column, int left, int top, int right, int bottom)
{
    auto* const row = new QHBoxLayout;
    column->addLayout(row);
    row->setContentsMargins(left, top, right, bottom);
    return row;
}

} // namespace

class InputSourceItem::Impl : public QObject
{
    Q_OBJECT

public:
    explicit Impl(InputSourceItem* owner)
        : q(owner)
    {}

    void buildLayout();
    void connectSignals();
    void applyKind();

    vexa::widgets::EditBox* makeEditor();
    bool isOnline() const { return stateDot->objectName() == onlineName; }
    bool isSelected() const { return border->property("select").toBool(); }
    void setSelected(bool selected) { border->setProperty("select", selected); }
    void setTileStyle(const char* style);
    void setCaption(const QString& text);
    void applyResolution(const QString& size, const QString& rate);
    void applyFrameRate(int rate);
    void refreshWebModeText();
    QVector<InputSourceToolTip::Row> toolTipRows() const;
    void showToolTip();
    void hideToolTip();
    void startDrag();

    InputSourceItem* const q;

    QWidget* border = nullptr;
    QLabel* thumbnail = nullptr;
    QLabel* caption = nullptr;
    vexa::widgets::EditBox* nameEdit = nullptr;
    vexa::widgets::EditBox* urlEdit = nullptr;
    QLabel* info = nullptr;
    vexa::widgets::ComboBox* resolutionBox = nullptr;
    QWidget* cover = nullptr;
    QLabel* loadingLabel = nullptr;
    DiplayWind* surface = nullptr;
    QLabel* stateDot = nullptr;
    vexa::widgets::PushButton* previewButton = nullptr;
    QLabel* duration = nullptr;
    QMenu* menu = nullptr;
    QAction* renameAction = nullptr;
    QAction* deleteAction = nullptr;
    QAction* editAction = nullptr;
    QTimer* timer = nullptr;

    uint64_t id = 0;
    QPoint pressPos;
    int32_t runningSeconds = 0;
    bool dragEnabled = false;
    QString resolutionText;
    QMovie* loadingMovie = nullptr;
    int32_t kind = streamKind;
    QString url;
    std::vector<quandel::CaptResolutionsInfo> captResolutions;
    bool captionFixed = false;
    QString captionText;
    int32_t resolutionMode = 0;
    int32_t webMode = nativeWebMode;
    QString webResolution;
    QPointer<InputSourceToolTip> toolTip;

    // The one field the frame threads write; the GUI thread only resets it.
    std::atomic<int> postedFrameRate{noPostedFrameRate};

public Q_SLOTS:
    void slotDelete();
    void slotPreviewToggled(bool checked);
    void slotPreviewClicked(bool checked);
    void slotNameChanged();
    void slotUpdateTime();
    void slotEdit();
    void setPreviewToggled(bool checked);
    void slotResolutionChanged(const QString& text);
};

vexa::widgets::EditBox* InputSourceItem::Impl::makeEditor()
{
    auto* const editor = new vexa::widgets::EditBox(border);
    editor->setTriggerEdit(true);
    editor->setCanDoubleClick(true);
    editor->setCanRestoreText(true);
    return editor;
}

void InputSourceItem::Impl::buildLayout()
{
    q->setAttribute(Qt::WA_StyledBackground);
    q->setFixedWidth(tileWidth);
    q->setProperty("style", QStringLiteral("BG4"));
    q->setProperty("radius", QStringLiteral("M"));

    // Boxes build hundreds of tiles in one pass of the event loop: the layouts are installed
    // quietly, so that building a tile posts no relayout request (see quietlayout.h).
    auto* const tileLayout = new QHBoxLayout;
    tileLayout->setContentsMargins(0, 0, 0, 0);

    border = new QWidget(q);
    border->setObjectName(QStringLiteral("itemBorder"));
    border->setProperty("select", false);
    border->setProperty("radius", QStringLiteral("M"));
    tileLayout->addWidget(border);
    vexa::widgets::installQuietly(q, tileLayout);

    auto* const column = new QVBoxLayout;
    column->setSpacing(2);
    column->setContentsMargins(1, 1, 1, 1);

    thumbnail = new QLabel(border);
    thumbnail->setFixedSize(thumbnailWidth, thumbnailHeight);
    thumbnail->setObjectName(QStringLiteral("thumbnail_streaming"));
    thumbnail->setProperty("radius", QStringLiteral("M"));
    thumbnail->setProperty("style", QStringLiteral("BG5"));
    column->addWidget(thumbnail);

    // The sample text only sizes the label until translateLanguage() gives it its caption.
    caption = new QLabel(QStringLiteral("Local Capture Device aaaaaaaaaaaaaa"), border);
    caption->setObjectName(QStringLiteral("captionLabel"));
    caption->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    addRow(column, 8, 2, 8, 0)->addWidget(caption);
    caption->hide();

    nameEdit = makeEditor();
    nameEdit->setObjectName(QStringLiteral("nameEdit"));
    addRow(column, 4, 0, 4, 0)->addWidget(nameEdit);

    urlEdit = makeEditor();
    urlEdit->setObjectName(QStringLiteral("urlEdit"));
    addRow(column, 4, 0, 4, 0)->addWidget(urlEdit);
    urlEdit->hide();

    QHBoxLayout* const infoRow = addRow(column, 6, 0, 6, 6);
    // The third line carries texts such as "Screenshot mode 3840*2160" that can be wider than
    // the tile.
    info = new vexa::widgets::ElidingLabel(QStringLiteral("--"), border);
    info->setObjectName(QStringLiteral("infoLabel"));
    info->setProperty("fontSize", QStringLiteral("S"));
    info->setEnabled(false);
    infoRow->addWidget(info);

    resolutionBox = new vexa::widgets::ComboBox();
    resolutionBox->setObjectName(QStringLiteral("resolutionBox"));
    resolutionBox->setProperty("fontSize", QStringLiteral("S"));
    resolutionBox->setFixedHeight(chooserHeight);
    resolutionBox->setEnabled(false);
    infoRow->addWidget(resolutionBox);
    vexa::widgets::installQuietly(border, column);
    resolutionBox->hide();

    // The floating children lie over the border widget in creation order, the last on top.
    cover = new QWidget(q);
    cover->setObjectName(QStringLiteral("cover"));
    cover->setProperty("style", QStringLiteral("BG5"));
    cover->setProperty("radius", QStringLiteral("M"));
    cover->setGeometry(1, 1, thumbnailWidth, thumbnailHeight);
    auto* const coverLayout = new QHBoxLayout;
    coverLayout->setContentsMargins(0, 0, 0, 0);
    loadingLabel = new QLabel(cover);
    loadingLabel->setObjectName(QStringLiteral("loadingLabel"));
    loadingLabel->setFixedSize(loadingSide, loadingSide);
    loadingLabel->setScaledContents(true);
    loadingLabel->setProperty("radius", QStringLiteral("M"));
    coverLayout->addWidget(loadingLabel, 0, Qt::AlignCenter);
    vexa::widgets::installQuietly(cover, coverLayout);
    cover->hide();

    surface = new DiplayWind(q);
    surface->setGeometry(1, 1, thumbnailWidth, thumbnailHeight);
    surface->hide();

    stateDot = new QLabel(q);
    stateDot->setObjectName(offlineName);
    stateDot->setGeometry(10, 8, stateDotSide, stateDotSide);

    previewButton = new vexa::widgets::PushButton(q);
    previewButton->setObjectName(QStringLiteral("previewBtn"));
    previewButton->setFixedSize(previewButtonSide, previewButtonSide);
    previewButton->move(tileWidth - 28, 3);
    previewButton->setCheckable(true);
    previewButton->setChecked(true);
    previewButton->setProperty("imageBtn", QStringLiteral("display"));

    duration = new QLabel(QStringLiteral("000:00:00"), q);
    duration->setObjectName(QStringLiteral("duration"));
    duration->setProperty("fontSize", QStringLiteral("S"));
    duration->setAlignment(Qt::AlignCenter);
    duration->setFixedSize(durationWidth, durationHeight);
    duration->move(tileWidth / 2 - durationWidth / 2, 70);

    menu = new QMenu(q);
    renameAction = menu->addAction(QStringLiteral("Rename"));
    deleteAction = menu->addAction(QStringLiteral("Delete"));
    editAction = new QAction(QStringLiteral("Edit"), menu);
    if (kind == webKind) {
        menu->addAction(editAction);
    }

    timer = new QTimer(this);
    q->translateLanguage();
}

void InputSourceItem::Impl::connectSignals()
{
    connect(previewButton, &QAbstractButton::toggled, this, &Impl::slotPreviewToggled);
    connect(previewButton, &QAbstractButton::clicked, this, &Impl::slotPreviewClicked);
    connect(renameAction, &QAction::triggered, nameEdit, &vexa::widgets::EditBox::beginEdit);
    connect(nameEdit, &vexa::widgets::EditBox::editingFinished, this, &Impl::slotNameChanged);
    connect(deleteAction, &QAction::triggered, this, &Impl::slotDelete);
    connect(timer, &QTimer::timeout, this, &Impl::slotUpdateTime);
    connect(editAction, &QAction::triggered, this, &Impl::slotEdit);
    connect(resolutionBox, &QComboBox::textActivated, this, &Impl::slotResolutionChanged);
}

void InputSourceItem::Impl::applyKind()
{
    switch (kind) {
    case ndiKind:
        thumbnail->setObjectName(QStringLiteral("thumbnail_ndi"));
        break;
    case captureKind:
        thumbnail->setObjectName(QStringLiteral("thumbnail_capture"));
        deleteAction->setVisible(false);
        info->hide();
        caption->show();
        resolutionBox->show();
        break;
    case webKind:
        thumbnail->setObjectName(QStringLiteral("thumbnail_web"));
        nameEdit->setCanDoubleClick(false);
        urlEdit->setCanDoubleClick(false);
        urlEdit->show();
        break;
    case streamKind:
        thumbnail->setObjectName(QStringLiteral("thumbnail_streaming"));
        break;
    default:
        break;
    }
    vexa::widgets::repolish(thumbnail);
}

void InputSourceItem::Impl::setTileStyle(const char* style)
{
    q->setProperty("style", QString::fromLatin1(style));
    vexa::widgets::repolish(q);
}

void InputSourceItem::Impl::setCaption(const QString& text)
{
    captionText = text;
    caption->setText(
        QFontMetrics(caption->font()).elidedText(text, Qt::ElideRight, captionElideWidth));
}

void InputSourceItem::Impl::applyResolution(const QString& size, const QString& rate)
{
    if (kind == webKind) {
        webResolution = size;
        webResolution.remove(QLatin1Char(','));
        refreshWebModeText();
        return;
    }
    if (!isOnline()) {
        info->setText(QStringLiteral("--"));
        return;
    }
    QString text = size + QLatin1Char('@') + rate + QStringLiteral("fps");
    text.remove(QLatin1Char(','));
    resolutionText = text;
    info->setText(resolutionText);
    if (resolutionMode == singleResolutionMode) {
        resolutionBox->clear();
        resolutionBox->addItem(resolutionText);
    }
}

void InputSourceItem::Impl::applyFrameRate(int rate)
{
    // The size part is read here, on the GUI thread that writes it, never on a frame thread.
    applyResolution(resolutionText.section(QLatin1Char('@'), 0, 0), QString::number(rate));
}

void InputSourceItem::Impl::refreshWebModeText()
{
    if (kind != webKind) {
        return;
    }
    if (webMode == nativeWebMode) {
        info->setText(trKey("NativeMode"));
    } else if (webMode == screenshotWebMode) {
        resolutionText = trKey("ScreenshotMode") + QLatin1Char(' ') + webResolution;
        info->setText(resolutionText);
    }
}

QVector<InputSourceToolTip::Row> InputSourceItem::Impl::toolTipRows() const
{
    QVector<InputSourceToolTip::Row> rows;
    if (kind == captureKind) {
        rows.append({trKey("Name"), captionText});
    } else if (kind == webKind) {
        rows.append({trKey("Name"), nameEdit->text()});
    }
    rows.append({trKey("Url"), url});
    if (kind == captureKind) {
        const QVariant current = resolutionBox->currentData();
        if (current.canConvert<quandel::CaptResolutionsInfo>()) {
            const auto format = current.value<quandel::CaptResolutionsInfo>();
            rows.append({trKey("Dpi"), QString::number(format.width) + QLatin1Char('*') +
                                           QString::number(format.height)});
            rows.append(
                {trKey("Fps"), QString::number(static_cast<double>(format.frameRate), 'f', 2)});
        }
    } else if (kind == webKind) {
        if (webMode == screenshotWebMode) {
            rows.append({trKey("Dpi"), webResolution});
        }
    } else {
        rows.append({trKey("Dpi"), resolutionText.section(QLatin1Char('@'), 0, 0)});
        rows.append({trKey("Fps"), resolutionText.section(QLatin1Char('@'), 1, 1)});
    }
    return rows;
}

void InputSourceItem::Impl::showToolTip()
{
    if (toolTip.isNull()) {
        toolTip = new InputSourceToolTip(q);
    }
    toolTip->setContent(toolTipRows());
    toolTip->move(q->mapToGlobal(QPoint(0, q->height())));
    toolTip->show();
}

void InputSourceItem::Impl::hideToolTip()
{
    // Destroyed even when something else hid it meanwhile: a kept tool-tip would get its rows
    // appended a second time on the next entry.
    if (!toolTip.isNull()) {
        toolTip->hide();
        delete toolTip.data();
    }
}

void InputSourceItem::Impl::startDrag()
{
    // The tile owns the drag; Qt also disposes of it once the drag is over.
    auto* const drag = new QDrag(q);
    const QPixmap picture = thumbnail->grab();
    drag->setPixmap(picture.scaled(thumbnail->width() / 2, thumbnail->height() / 2,
                                   Qt::IgnoreAspectRatio, Qt::FastTransformation));
    drag->setHotSpot(QPoint(thumbnail->width() / 4, thumbnail->height() / 4));
    // Held until exec() returns: the payload carries the meta's raw address, which a drop
    // target may follow only while this reference keeps the object alive.
    const MetaQueryResult meta = Q_EMIT q->signalGetInputSourceMeta(id);
    drag->setMimeData(InputSourceDragPayload::make(id, meta));
    // Nothing of the tile is touched after the drag, which may have seen the tile removed.
    ModalLoop::run(q, [drag] { drag->exec(Qt::MoveAction); });
}

void InputSourceItem::Impl::slotDelete()
{
    if (isSelected()) {
        Q_EMIT q->signalBatchDelete();
    } else {
        Q_EMIT q->signalDelete(id);
    }
}

void InputSourceItem::Impl::slotPreviewToggled(bool checked)
{
    QMetaObject::invokeMethod(this, "setPreviewToggled", Qt::QueuedConnection,
                              Q_ARG(const bool, checked));
}

void InputSourceItem::Impl::slotPreviewClicked(bool checked)
{
    // The lock-out keeps an operator from flooding the manager with preview requests.
    previewButton->setEnabled(false);
    Q_EMIT q->signalPreviewChanged(id, !checked);
    QTimer::singleShot(previewLockOutMs, previewButton,
                       [button = previewButton] { button->setEnabled(true); });
}

void InputSourceItem::Impl::slotNameChanged()
{
    Q_EMIT q->signalNameChanged(id, nameEdit->text());
}

void InputSourceItem::Impl::slotUpdateTime()
{
    if (runningSeconds == std::numeric_limits<int32_t>::max()) {
        // 68 years on air; the clock stays where it is rather than wrap round.
        timer->stop();
        VEXA_WARNING(QStringLiteral("the running time of source %1 cannot count further").arg(id));
        return;
    }
    ++runningSeconds;
    duration->setText(runningTimeText(runningSeconds));
}

void InputSourceItem::Impl::slotEdit()
{
    Q_EMIT q->signalEdit(id);
}

void InputSourceItem::Impl::setPreviewToggled(bool checked)
{
    // A tile whose device caption was given keeps its surface and cover as they are.
    if (captionFixed) {
        return;
    }
    surface->setVisible(!checked);
    cover->setVisible(!checked);
    if (loadingMovie != nullptr) {
        loadingMovie->setPaused(checked);
    }
}

void InputSourceItem::Impl::slotResolutionChanged(const QString& text)
{
    const int index = resolutionBox->findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (index < 0) {
        return;
    }
    const QVariant data = resolutionBox->itemData(index);
    if (data.canConvert<quandel::CaptResolutionsInfo>()) {
        Q_EMIT q->signalCaptResolutionChanged(id, data.value<quandel::CaptResolutionsInfo>());
    }
}

InputSourceItem::InputSourceItem(int kind, QWidget* parent)
    : QWidget(parent)
    , d(std::make_unique<Impl>(this))
{
    d->kind = kind;
    d->buildLayout();
    d->connectSignals();
    d->applyKind();
    registerMetaTypes();
    // Frame threads post the frame rate to the tile.
    QueuedHandoff::watch(this);
}

InputSourceItem::~InputSourceItem() = default;

void InputSourceItem::setId(uint64_t id)
{
    d->id = id;
}

uint64_t InputSourceItem::id() const
{
    return d->id;
}

int InputSourceItem::kind() const
{
    return d->kind;
}

void InputSourceItem::setDragEnabled(bool enabled)
{
    d->dragEnabled = enabled;
}

bool InputSourceItem::isDragEnabled() const
{
    return d->dragEnabled;
}

void InputSourceItem::setLoadingMovie(const QString& path)
{
    QMovie* const previous = d->loadingMovie;
    d->loadingMovie = new QMovie(path, QByteArray(), d->loadingLabel);
    d->loadingLabel->setMovie(d->loadingMovie);
    delete previous;
}

void InputSourceItem::setName(const QString& name)
{
    // A longer name keeps whatever cap the editor had, so that a default name longer than the
    // cap is shown whole.
    if (name.size() <= nameMaxLength) {
        d->nameEdit->setMaxLength(nameMaxLength);
    }
    d->nameEdit->setText(name);
}

void InputSourceItem::setUrl(const QString& url)
{
    d->url = url;
    if (d->kind == webKind) {
        d->urlEdit->setText(url);
    }
}

void InputSourceItem::setWebMode(int mode)
{
    d->webMode = mode;
}

void InputSourceItem::setOnline(bool online)
{
    const QLatin1String name = online ? onlineName : offlineName;
    if (d->stateDot->objectName() == name) {
        return;
    }
    d->stateDot->setObjectName(name);
    vexa::widgets::repolish(d->stateDot);
    d->resolutionBox->setEnabled(online);
    if (online) {
        d->timer->start(tickMs);
        if (!d->previewButton->isChecked()) {
            d->surface->show();
        }
        d->info->setText(d->resolutionText);
        // Rates posted while offline were dropped; the next frame must post again.
        d->postedFrameRate = noPostedFrameRate;
    } else {
        d->surface->hide();
        d->timer->stop();
        d->runningSeconds = 0;
        d->duration->setText(runningTimeText(0));
        d->info->setText(QStringLiteral("--"));
    }
    d->refreshWebModeText();
}

bool InputSourceItem::isOnline() const
{
    return d->isOnline();
}

void InputSourceItem::setRunningSeconds(int seconds)
{
    d->runningSeconds = seconds;
}

int InputSourceItem::runningSeconds() const
{
    return d->runningSeconds;
}

QString InputSourceItem::name() const
{
    return d->nameEdit->text();
}

void InputSourceItem::setResolution(const QString& size, const QString& rate)
{
    // The text no longer is what the frames last made of it, so the next frame must refresh it
    // even when its rate has not changed.
    d->postedFrameRate = noPostedFrameRate;
    d->applyResolution(size, rate);
}

void InputSourceItem::setDeviceCaption(const QString& detail, const QString& title)
{
    d->captionFixed = true;
    d->setCaption(title + QLatin1Char('(') + detail + QLatin1Char(')'));
}

void InputSourceItem::setResolutionMode(int mode)
{
    d->resolutionMode = mode;
    if (mode == singleResolutionMode) {
        d->resolutionBox->addItem(QStringLiteral("1920*1080@60"));
    }
}

void InputSourceItem::setCaptResolutions(
    const std::vector<quandel::CaptResolutionsInfo>& resolutions)
{
    d->captResolutions = resolutions;
    for (const quandel::CaptResolutionsInfo& format : resolutions) {
        d->resolutionBox->addItem(chooserEntryText(format), QVariant::fromValue(format));
    }
}

void InputSourceItem::setCurrentCaptResolution(const quandel::CaptResolutionsInfo& current)
{
    for (int index = 0; index < d->resolutionBox->count(); ++index) {
        const QVariant entry = d->resolutionBox->itemData(index);
        if (!entry.canConvert<quandel::CaptResolutionsInfo>()) {
            continue;
        }
        const auto format = entry.value<quandel::CaptResolutionsInfo>();
        // The device reports rates such as 59.94 as float while callers may have computed
        // them as double; an exact comparison would miss the entry.
        if (format.width == current.width && format.height == current.height &&
            format.text == current.text &&
            zqctuils::FloatComparison::equal(format.frameRate, current.frameRate)) {
            d->resolutionBox->setCurrentIndex(index);
            return;
        }
    }
}

void InputSourceItem::setThumbnail(const QPixmap& thumbnail)
{
    if (thumbnail.isNull()) {
        d->thumbnail->clear();
        return;
    }
    d->thumbnail->setPixmap(
        thumbnail.scaled(d->thumbnail->size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

void InputSourceItem::setThumbnail(const zq::mediacore::Thumbnail& thumbnail)
{
    if (thumbnail.rgba.empty() && thumbnail.width == 0 && thumbnail.height == 0) {
        return;
    }
    // A line of more than INT_MAX bytes cannot be described to QImage; far smaller pictures
    // already make no sense as a 168 x 88 thumbnail.
    if (!thumbnail.isValid() || thumbnail.width > maxThumbnailSide ||
        thumbnail.height > maxThumbnailSide) {
        VEXA_WARNING(QStringLiteral("thumbnail of source %1 refused: %2 x %3 pixels in %4 bytes")
                         .arg(d->id)
                         .arg(thumbnail.width)
                         .arg(thumbnail.height)
                         .arg(thumbnail.rgba.size()));
        return;
    }
    const QImage image(thumbnail.rgba.data(), thumbnail.width, thumbnail.height,
                       thumbnail.width * 4, QImage::Format_RGBA8888);
    setThumbnail(QPixmap::fromImage(image));
}

QPixmap InputSourceItem::thumbnail() const
{
    return d->thumbnail->pixmap(Qt::ReturnByValue);
}

void InputSourceItem::setPreviewChecked(bool checked)
{
    d->previewButton->setChecked(checked);
}

bool InputSourceItem::isPreviewChecked() const
{
    return d->previewButton->isChecked();
}

bool InputSourceItem::isPreviewing() const
{
    return !d->previewButton->isChecked();
}

bool InputSourceItem::isPreviewToggleEnabled() const
{
    return d->previewButton->isEnabled();
}

bool InputSourceItem::isSelected() const
{
    return d->isSelected();
}

void InputSourceItem::clearSelect()
{
    d->setSelected(false);
    vexa::widgets::repolish(d->border);
}

void InputSourceItem::updateFrame(const zq::mediacore::IFrame* frame)
{
    d->surface->updateFrame(frame);
    // kind and surface are fixed at construction, so reading them here races with nothing.
    if (frame == nullptr || d->kind != streamKind) {
        return;
    }
    // Only the rate crosses to the GUI thread, and only when it changed: frames come at the
    // stream's pace and the GUI queue must not fill with identical updates.
    const int rate = integerFrameRate(frame->getFrameRate());
    if (d->postedFrameRate.exchange(rate) == rate) {
        return;
    }
    QueuedHandoff::post(this, [this, rate] { d->applyFrameRate(rate); });
}

void InputSourceItem::translateLanguage()
{
    if (!d->captionFixed) {
        d->setCaption(trKey("LocalCaptureDevice"));
    }
    d->renameAction->setText(trKey("Rename"));
    d->deleteAction->setText(trKey("Delete"));
    d->editAction->setText(trKey("Edit"));
    d->refreshWebModeText();
}

void InputSourceItem::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        if (event->modifiers().testFlag(Qt::ControlModifier)) {
            const bool selected = !d->isSelected();
            d->setSelected(selected);
            Q_EMIT signalBatchSelect(d->id, selected);
        } else {
            d->setSelected(true);
            Q_EMIT signalSelect(d->id);
        }
        vexa::widgets::repolish(d->border);
        d->pressPos = event->pos();
    }
    QWidget::mousePressEvent(event);
}

void InputSourceItem::mouseDoubleClickEvent(QMouseEvent* event)
{
    Q_EMIT signalDoubleClicked(d->id);
    QWidget::mouseDoubleClickEvent(event);
}

void InputSourceItem::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons().testFlag(Qt::LeftButton) && d->dragEnabled) {
        const QPoint delta = event->pos() - d->pressPos;
        // Squared in 64 bits: exact at the threshold and free of overflow far off the tile.
        const qint64 dx = delta.x();
        const qint64 dy = delta.y();
        if (dx * dx + dy * dy >= qint64(dragDistance) * dragDistance) {
            d->startDrag();
            return;
        }
    }
    QWidget::mouseMoveEvent(event);
}

void InputSourceItem::enterEvent(QEvent* event)
{
    d->setTileStyle("BG6");
    d->showToolTip();
    QWidget::enterEvent(event);
}

void InputSourceItem::leaveEvent(QEvent* event)
{
    d->setTileStyle("BG4");
    d->hideToolTip();
    QWidget::leaveEvent(event);
}

void InputSourceItem::contextMenuEvent(QContextMenuEvent* /*event*/)
{
    bool severalSelected = false;
    if (d->isSelected()) {
        severalSelected = Q_EMIT signalCheckMultiSelect();
        // Capture devices cannot be deleted, so a multi-selection leaves nothing to offer.
        if (severalSelected && d->kind == captureKind) {
            return;
        }
    }
    // With several tiles selected only "Delete" makes sense: it deletes the whole selection.
    d->renameAction->setVisible(!severalSelected);
    d->editAction->setVisible(!severalSelected);
    ModalLoop::run(
        this, [this] { d->menu->exec(QCursor::pos()); }, d->menu);
}

} // namespace vexa::inputsource

#include "inputsourceitem.moc"
