#pragma once

#include "PlugInInterface.h"

#include <QObject>
#include <QPointer>

#include <memory>

namespace ferrule {

struct ModuleState;
class SysForm;
class Transmission;

// The plug-in object the host creates: it keeps the host, creates and sets up the editor window
// on first need, and forwards the host's calls.
class PlugIn : public QObject,
               public PlugInInterface,
               public EditorWorkingCopy,
               public EditorCommands {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID FerrulePlugInInterface_iid FILE "ferrule.json")
    Q_INTERFACES(ferrule::PlugInInterface ferrule::EditorWorkingCopy ferrule::EditorCommands)
    Q_PROPERTY(QObject* Interface READ hostObject WRITE Interface)
    Q_PROPERTY(QObject* Owner READ ownerWindow WRITE Owner)
    Q_PROPERTY(QString Title READ title WRITE Title)
    Q_PROPERTY(int Format READ format WRITE Format)
    Q_PROPERTY(int Version READ Version CONSTANT)
    Q_PROPERTY(int Compatibility READ Compatibility CONSTANT)
    Q_PROPERTY(QString About READ About CONSTANT)
    Q_PROPERTY(QString MenuEntry READ MenuEntry CONSTANT)
    Q_PROPERTY(uchar EditValue READ editValue WRITE EditValue)
public:
    static constexpr int kMajor = 4;
    static constexpr int kMinor = 2;
    static constexpr int kRevision = 0;

    explicit PlugIn(QObject* parent = nullptr);
    ~PlugIn() override;

    void Interface(QObject* host) override;
    void Owner(QObject* window) override;
    Q_INVOKABLE void Center(qint16 x, qint16 y) override;
    void Title(const QString& title) override;
    void Format(int model) override;
    Q_INVOKABLE void Start() override;
    Q_INVOKABLE void Quit() override;
    int Version() const override;
    int Compatibility() const override { return 67108864; }
    QString About() const override { return QStringLiteral("System Editor Add-in"); }
    QString MenuEntry() const override { return QStringLiteral("Marwick"); }
    Q_INVOKABLE void EditForwards() override {}
    Q_INVOKABLE void EditBackwards() override {}
    void EditValue(uchar) override {}
    Q_INVOKABLE void QueueEmpty() override;

    void setEditListener(std::function<void()> listener) override {
        editListener_ = std::move(listener);
    }
    QByteArray workingImage() const override;

    QWidget* editorWindow() const override;
    void showPage(int page) override;
    void pressTransmit() override;
    bool transmitting() const override;
    QString lastError() const override;
    void setTransmissionListener(std::function<void()> listener) override {
        transmissionListener_ = std::move(listener);
    }
    void cancel() override;

    QObject* hostObject() const;
    QObject* ownerWindow() const;
    QString title() const;
    int format() const;
    uchar editValue() const { return 0; }

    // The editor window, created and set up on first need; null before.
    SysForm* editor() const { return editor_.get(); }
    const ModuleState& state() const { return *state_; }

    // Version as the host reads it: major × 65536 + minor × 256 + revision, where minor × 256
    // is formed in 16-bit signed arithmetic.
    static int versionNumber(int major, int minor, int revision);

private:
    SysForm& ensureEditor();

    std::unique_ptr<ModuleState> state_;
    std::unique_ptr<SysForm> editor_;
    std::unique_ptr<Transmission> transmission_;
    std::function<void()> editListener_;
    std::function<void()> transmissionListener_;
};

} // namespace ferrule
