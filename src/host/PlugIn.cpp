#include "PlugIn.h"

#include "Transmission.h"
#include "editor/EditHistory.h"
#include "editor/SysForm.h"
#include "settings/SettingsStore.h"
#include "sysdata/FerruleError.h"
#include "sysdata/ModuleState.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace ferrule {

PlugIn::PlugIn(QObject* parent)
    : QObject(parent)
    , state_(std::make_unique<ModuleState>()) {
    setObjectName(QStringLiteral("Ferrule.PlugIn"));
}

PlugIn::~PlugIn() = default;

int PlugIn::versionNumber(int major, int minor, int revision) {
    const int minorPart = minor * 256;
    if (minorPart > INT16_MAX || minorPart < INT16_MIN)
        throw FerruleError(QStringLiteral("Version: overflow"));
    return major * 65536 + minorPart + revision;
}

int PlugIn::Version() const {
    return versionNumber(kMajor, kMinor, kRevision);
}

void PlugIn::Interface(QObject* host) {
    state_->host.setHost(host);
    HostFontSettings font;
    const HostLink& link = state_->host;
    font.family = link.propertyInt("FontFamily");
    font.name = link.property("FontName").toString();
    font.italic = link.propertyBool("FontItalic");
    font.bold = link.propertyBool("FontBold");
    bool ok = false;
    font.size = link.property("FontSize").toFloat(&ok);
    if (!ok)
        throw FerruleError(
            QStringLiteral("FontSize: the host's value does not convert to a number"));
    font.underline = link.propertyBool("FontUnderline");
    font.strikethrough = link.propertyBool("FontStrikethrough");
    font.valid = true;
    state_->font = font;
}

QObject* PlugIn::hostObject() const {
    return state_->host.host();
}

void PlugIn::Owner(QObject* window) {
    const auto* widget = qobject_cast<QWidget*>(window);
    if (!qobject_cast<QWindow*>(window) && !widget)
        throw FerruleError(
            QStringLiteral("Owner: type mismatch: the value is not a window object"));
    state_->owner = window;
}

QObject* PlugIn::ownerWindow() const {
    return state_->owner;
}

SysForm& PlugIn::ensureEditor() {
    if (!editor_) {
        auto form = std::make_unique<SysForm>(*state_);
        form->Setup();
        form->Form_Load();
        auto transmission = std::make_unique<Transmission>(*state_);
        SysForm* window = form.get();
        form->setTransmissionControl({[t = transmission.get()] { return t->StartTransmission(); },
                                      [t = transmission.get()] { t->stop(); }});
        QObject::connect(transmission.get(), &Transmission::progressed, window,
                         &SysForm::showTransmissionProgress);
        QObject::connect(transmission.get(), &Transmission::ended, window,
                         &SysForm::transmissionEnded);
        QObject::connect(&form->history(), &EditHistory::committed, this, [this] {
            if (editListener_) editListener_();
        });
        QObject::connect(window, &SysForm::transmissionStopped, this, [this] {
            if (transmissionListener_) transmissionListener_();
        });
        editor_ = std::move(form);
        transmission_ = std::move(transmission);
    }
    return *editor_;
}

void PlugIn::Center(qint16 x, qint16 y) {
    SysForm& form = ensureEditor();
    const int width = form.width() * 15;
    const int height = form.height() * 15;
    int left = x - width / 2;
    int top = y - height / 2;
    left = std::max(left, 0);
    top = std::max(top, 0);
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QRect available = screen ? screen->geometry() : QRect(0, 0, 1024, 768);
    const int screenWidth = available.width() * 15;
    const int screenHeight = available.height() * 15;
    if (left + width > screenWidth) left = screenWidth - width;
    if (top + height > screenHeight) top = screenHeight - height;
    form.move(left / 15, top / 15);
}

void PlugIn::Title(const QString& title) {
    ensureEditor().setWindowTitle(QStringLiteral("System: ") + title);
}

QString PlugIn::title() const {
    return editor_ ? editor_->windowTitle() : QString();
}

void PlugIn::Format(int model) {
    ensureEditor().SetFormat(model);
}

int PlugIn::format() const {
    return state_->model;
}

void PlugIn::Start() {
    SysForm& form = ensureEditor();
    if (state_->model == 0) Format(10);
    if (!form.isLoaded()) form.Form_Load();
    form.ShowTab(readLastPage(state_->model));
    form.exec();
}

void PlugIn::Quit() {
    state_->owner = nullptr;
    transmission_.reset();
    editor_.reset();
    state_->host.setHost(nullptr);
}

QByteArray PlugIn::workingImage() const {
    return editor_ ? state_->image.toByteArray() : QByteArray();
}

QWidget* PlugIn::editorWindow() const {
    return editor_ && editor_->isVisible() ? editor_.get() : nullptr;
}

void PlugIn::showPage(int page) {
    if (editor_) editor_->ShowTab(page);
}

void PlugIn::pressTransmit() {
    if (editor_) editor_->pressCommand(0);
}

bool PlugIn::transmitting() const {
    return editor_ && editor_->transmissionStep() != 0;
}

QString PlugIn::lastError() const {
    return editor_ ? editor_->lastError() : QString();
}

void PlugIn::cancel() {
    // The window's own reject: Escape's cancel, with its question when values changed.
    if (editor_) static_cast<QDialog&>(*editor_).reject();
}

void PlugIn::QueueEmpty() {
    if (!editor_) return;
    transmission_->SendNextBlock();
}

} // namespace ferrule
