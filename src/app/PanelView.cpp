#include "app/PanelView.h"

#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/AppStyle.h"
#include "app/AppWindow.h"
#include "app/MeterContent.h"
#include "app/ShrinkingLabel.h"
#include "app/Symbols.h"
#include "spectrum/SpectrumAnalyzer.h"
#include "switching/SwitcherEngine.h"

namespace corvanel {
namespace {

// One line: a source or device name too long for the column ends in an ellipsis.
ShrinkingLabel* captionLabel(QWidget* parent) {
    auto label = new ShrinkingLabel(style::callout(), 1.0, parent);
    label->setColor(style::secondary());
    return label;
}

// `column(value:caption:)`: the value large, the caption under it.
QWidget* column(ShrinkingLabel*& value, ShrinkingLabel*& caption, QWidget* parent) {
    auto box = new QWidget(parent);
    auto stack = new QVBoxLayout(box);
    stack->setContentsMargins(0, 0, 0, 0);
    stack->setSpacing(4);
    value = new ShrinkingLabel(style::fixedDigits(30, true), 0.5, box);
    caption = captionLabel(box);
    stack->addWidget(value);
    stack->addWidget(caption);
    return box;
}

QString storedStyle(const SettingsStore& settings) {
    const SettingValue value = settings.read(PanelView::meterStyleKey);
    if (const auto* text = std::get_if<std::string>(&value)) return QString::fromStdString(*text);
    return PanelView::defaultMeterStyle;
}

}  // namespace

PanelView::PanelView(AppEnvironment environment, QWidget* parent)
    : QWidget(parent),
      environment_(std::move(environment)),
      meterStyle_(storedStyle(*environment_.settings)) {
    setObjectName("panelView");
    setMouseTracking(true);
    auto stack = new QVBoxLayout(this);
    stack->setContentsMargins(20, 8, 20, 20);
    stack->setSpacing(8);
    stack->addWidget(makeHeader());
    auto centred = new QHBoxLayout;
    centred->addStretch(0);
    centred->addWidget(makeSummary(), 1);
    centred->addStretch(0);
    stack->addLayout(centred);
    meter_ = new MeterContent(environment_.engine, meterStyle_, this);
    meter_->setObjectName("meterContent");
    stack->addWidget(meter_, 1);
    applyMinimumSize(groupOf(meterStyle_));

    hoverProbe_ = std::make_shared<HoverProbe>();
    hoverProbe_->hasWindow = [this] { return panelWindow() != nullptr; };
    hoverProbe_->pointerInsideWindow = [this] {
        const AppWindow* window = panelWindow();
        return window && environment_.pointerPosition &&
               window->frameGeometry().contains(environment_.pointerPosition());
    };
    hoverProbe_->hideControls = [this] { setWindowControls(false); };

    engineChanged_ = environment_.engine->changed.connect([this] { refreshSummary(); });
    refreshSummary();
    refreshMenuChecks();
}

PanelView::~PanelView() {
    if (hideTask_) hideTask_->cancel();
    if (appeared_) environment_.engine->spectrum()->meterWindowDisappeared();
}

QWidget* PanelView::makeHeader() {
    auto header = new QWidget(this);
    auto row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->addStretch(1);

    menuButton_ = new QToolButton(header);
    menuButton_->setObjectName("styleMenuButton");
    menuButton_->setText("Menu");
    menuButton_->setFont(style::caption2());
    menuButton_->setIcon(symbolIcon(Symbol::chevronDown, style::secondary(), 7));
    menuButton_->setIconSize(QSize(7, 7));
    menuButton_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    menuButton_->setLayoutDirection(Qt::RightToLeft);  // the chevron after the text
    menuButton_->setPopupMode(QToolButton::InstantPopup);
    menuButton_->setFixedHeight(12);
    menuButton_->setStyleSheet(
        QStringLiteral("QToolButton{border:none;background:transparent;color:%1;padding:0 2px;}"
                       "QToolButton::menu-indicator{image:none;width:0;}")
            .arg(style::secondary().name()));

    menu_ = new QMenu(menuButton_);
    // The shell's own face, and separators that show on the dark menu.
    menu_->setFont(style::callout());
    menu_->setStyleSheet(
        QStringLiteral("QMenu::separator{height:1px;background:%1;margin:4px 6px;}")
            .arg(style::secondary().name()));
    for (const PanelMeterStyle meterStyle : PanelMeterStyle::allCases()) {
        const QString raw = QString::fromUtf8(meterStyle.rawValue());
        QAction* action = menu_->addAction(QString::fromUtf8(meterStyle.title()));
        action->setCheckable(true);
        action->setData(raw);
        connect(action, &QAction::triggered, this, [this, raw] { chooseStyle(raw); });
    }
    menu_->addSeparator();
    QAction* visualizer = menu_->addAction("Candlelight Visualizer");
    connect(visualizer, &QAction::triggered, this, [this] {
        if (environment_.openWindow) environment_.openWindow("visualizer");
    });
    menu_->addSeparator();
    alwaysOnTopAction_ = menu_->addAction("Always on top");
    alwaysOnTopAction_->setCheckable(true);
    alwaysOnTopAction_->setChecked(alwaysOnTop());
    connect(alwaysOnTopAction_, &QAction::triggered, this,
            [this](bool checked) { setAlwaysOnTop(checked); });
    menuButton_->setMenu(menu_);
    row->addWidget(menuButton_);
    return header;
}

QWidget* PanelView::makeSummary() {
    auto summary = new QWidget(this);
    summary->setObjectName("summaryRow");
    summary->setMaximumWidth(540);
    summary->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    auto row = new QHBoxLayout(summary);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(24);
    row->addWidget(column(detectedValue_, detectedCaption_, summary), 1);
    auto arrow = new QLabel(summary);
    arrow->setPixmap(symbolPixmap(Symbol::arrowRight, style::secondary(), 20));
    row->addWidget(arrow);
    row->addWidget(column(deviceValue_, deviceCaption_, summary), 1);
    detectedValue_->setObjectName("summaryDetectedText");
    detectedCaption_->setObjectName("summaryDetectedSource");
    deviceValue_->setObjectName("summaryDeviceText");
    deviceCaption_->setObjectName("summaryDeviceName");
    return summary;
}

void PanelView::refreshSummary() {
    const SwitcherEngine& engine = *environment_.engine;
    detectedValue_->setText(QString::fromStdString(engine.detectedText()));
    const auto& detection = engine.detection();
    detectedCaption_->setText(detection ? QString::fromStdString(detection->source)
                                        : QStringLiteral("No track detected"));
    deviceValue_->setText(QString::fromStdString(engine.deviceText()));
    deviceCaption_->setText(QString::fromStdString(engine.deviceName()));
}

void PanelView::refreshMenuChecks() {
    for (QAction* action : menu_->actions())
        if (action->isCheckable() && action != alwaysOnTopAction_)
            action->setChecked(action->data().toString() == meterStyle_);
}

void PanelView::chooseStyle(const QString& rawValue) {
    const QString old = std::exchange(meterStyle_, rawValue);
    environment_.settings->write(meterStyleKey, rawValue.toStdString());
    refreshMenuChecks();
    if (old == rawValue) return;
    meter_->setStyle(rawValue);
    resizePanel(old, rawValue);
}

bool PanelView::alwaysOnTop() const {
    return readBool(*environment_.settings, alwaysOnTopKey, true);
}

void PanelView::setAlwaysOnTop(bool onTop) {
    environment_.settings->write(alwaysOnTopKey, onTop);
    alwaysOnTopAction_->setChecked(onTop);
    if (AppWindow* window = panelWindow()) window->chrome().setFloating(onTop);
}

AppWindow* PanelView::panelWindow() const {
    return environment_.windows ? environment_.windows->firstWithIdentifierContaining("panel")
                                : nullptr;
}

PanelHeightGroup PanelView::groupOf(const QString& rawValue) {
    const auto meterStyle = PanelMeterStyle::fromRawValue(rawValue.toStdString());
    return meterStyle ? meterStyle->heightGroup() : PanelHeightGroup::compact;
}

int PanelView::contentHeight(PanelHeightGroup group) {
    return group == PanelHeightGroup::tall ? tallHeight : compactHeight;
}

void PanelView::applyMinimumSize(PanelHeightGroup group) {
    setMinimumSize(minimumWidth, contentHeight(group));
}

void PanelView::resizePanel(const QString& oldStyle, const QString& newStyle) {
    const PanelHeightGroup from = groupOf(oldStyle);
    const PanelHeightGroup to = groupOf(newStyle);
    if (from == to) return;
    AppWindow* window = panelWindow();
    if (!window) {
        applyMinimumSize(to);
        return;
    }
    if (window->windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)) {
        // A zoomed window keeps the screen's size; the new height is for its normal size, once
        // it is restored. Moving its frame now would unzoom it and lose that size.
        applyMinimumSize(to);
        heightOnRestore_ = to;
        window->installEventFilter(this);
        return;
    }
    bringToGroupHeight(*window, to, true);
}

void PanelView::bringToGroupHeight(AppWindow& window, PanelHeightGroup to, bool animated) {
    // The whole window is content under the hidden title bar: its height is the content height.
    // Only the size changes, so the top edge stays where the window manager has it.
    const QSize target(window.width(), contentHeight(to));
    if (to == PanelHeightGroup::compact) applyMinimumSize(to);
    if (resizeAnimation_) resizeAnimation_->stop();
    if (!animated) {
        window.resize(target);
        applyMinimumSize(to);
        return;
    }
    auto animation = new QPropertyAnimation(&window, "size", &window);
    animation->setDuration(resizeAnimationMilliseconds);
    animation->setStartValue(window.size());
    animation->setEndValue(target);
    connect(animation, &QPropertyAnimation::finished, this, [this, to] { applyMinimumSize(to); });
    resizeAnimation_ = animation;
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

bool PanelView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == this->window() && event->type() == QEvent::Enter) handleHover(true);
    if (watched == this->window() && event->type() == QEvent::Leave) handleHover(false);
    // The first size the restored window gets is its normal one: bring that to the group chosen
    // while it was zoomed, at once (an animation still running would unzoom a window zoomed
    // again straight away).
    // Only a resize asks which window is the panel: the filter also sees the events a window
    // sends while it is being destroyed, when it is no longer an AppWindow.
    if (heightOnRestore_ && event->type() == QEvent::Resize) {
        AppWindow* window = panelWindow();
        if (window && watched == window &&
            !(window->windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)))
            bringToGroupHeight(*window, *std::exchange(heightOnRestore_, std::nullopt), false);
    }
    return QWidget::eventFilter(watched, event);
}

void PanelView::setWindowControls(bool visible) {
    if (AppWindow* window = panelWindow()) window->chrome().setWindowButtonsVisible(visible);
}

void PanelView::handleHover(bool inside) {
    if (hideTask_) hideTask_->cancel();
    hideTask_.reset();
    if (inside) {
        setWindowControls(true);
        return;
    }
    hideTask_ = spawn(environment_.executor, hideWhenPointerLeaves(hoverProbe_));
}

Task<> PanelView::hideWhenPointerLeaves(std::weak_ptr<HoverProbe> weak) {
    for (;;) {
        if (co_await isCancelled()) co_return;
        {
            const auto probe = weak.lock();
            if (!probe || !probe->hasWindow()) co_return;
            if (!probe->pointerInsideWindow()) {
                probe->hideControls();
                co_return;
            }
        }
        // Over the title-bar strip, which the content's hover tracking does not cover.
        co_await sleepFor(hoverPollInterval);
    }
}

void PanelView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (appeared_) return;
    appeared_ = true;
    environment_.engine->spectrum()->meterWindowAppeared();
    // Hover is tracked for the whole window: the window buttons are a row above this view, and
    // a pointer arriving straight on them never enters the view.
    window()->installEventFilter(this);
    // Hidden on the next turn, not inside the appear handler, once the window has its buttons.
    QPointer<PanelView> self(this);
    environment_.executor->post([self] {
        if (self) self->setWindowControls(false);
    });
}

}  // namespace corvanel
