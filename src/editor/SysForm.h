#pragma once

#include "controls/ButtonArt.h"
#include "pages/PageBuilder.h"
#include "sysdata/SystemImage.h"

#include <QDialog>
#include <QString>

#include <array>
#include <functional>
#include <memory>
#include <vector>

class QLabel;

namespace ferrule {

struct ModuleState;
class ButtonPress;
class ControlPools;
class EditHistory;
class FocusRing;
class KeyboardNavigation;
class GridEditor;
class ImageButton;
class OptionHover;
class PageArea;
class ValueBinding;

// The editor window: mode buttons, tab buttons, command buttons and the page area. Set up once
// for a plug-in (Setup), laid out per model (SetFormat), shown modally by the plug-in's Start.
class SysForm : public QDialog {
    Q_OBJECT
    Q_PROPERTY(int CurrentPage READ currentPage)
    Q_PROPERTY(int CurrentTab READ currentTab)
    Q_PROPERTY(int model READ model)
    Q_PROPERTY(bool transmitted READ transmitted)
    Q_PROPERTY(QString lastError READ lastError)
    Q_PROPERTY(int transmissionStep READ transmissionStep)
public:
    // Window geometry in twips.
    static constexpr int kWidth = 9180;
    static constexpr int kPageTop = 1440;
    static constexpr int kPageHeight = 6360;
    static constexpr int kHeight = kPageTop + kPageHeight;

    explicit SysForm(ModuleState& state);
    ~SysForm() override;

    void Setup();
    void SetFormat(int model);
    Q_INVOKABLE void ShowTab(int page);
    Q_INVOKABLE void UpdateDeviceID();
    void Form_Load();
    void Form_Unload();

    // The four commands of the command buttons.
    Q_INVOKABLE void ToggleTransmission();
    // A command button (0-3) pressed and released, as a click or the space key on it does.
    void pressCommand(int i);
    void ReloadFromHost();
    // Undo and redo of the last edit (Ctrl+Z, Ctrl+Shift+Z and the platform's keys).
    Q_INVOKABLE void undo();
    Q_INVOKABLE void redo();
    void CancelEdit();
    void CommitAndClose();
    // Escape and the window's close box: a cancel that asks before it gives up changed values
    // ("Discard" or "Keep editing"); after a transmission the cancel's own question asks.
    void CancelFromKeyboardOrFrame();
    // Whether the image differs from the host's data.
    bool differsFromHost() const;

    static bool TabAvailable(int tab, int model);
    static int pageForTab(int tab);
    static int modelForModeButton(int index);

    int currentPage() const { return currentPage_; }
    int currentTab() const { return currentTab_; }
    int model() const;
    bool transmitted() const { return transmitted_; }
    QString lastError() const { return lastError_; }
    bool isLoaded() const { return loaded_; }

    ImageButton* modeButton(int i) const { return modeButtons_.at(std::size_t(i)); }
    ImageButton* tabButton(int i) const { return tabButtons_.at(std::size_t(i)); }
    ImageButton* commandButton(int i) const { return commandButtons_.at(std::size_t(i)); }
    QLabel* txWarning() const { return txWarning_; }
    QLabel* txProgress() const { return txProgress_; }
    PageArea* pageArea() const { return pageArea_; }
    ControlPools& pools() const { return *pools_; }
    PageBuilder& builder() { return *builder_; }
    ValueBinding& binding() { return *binding_; }
    OptionHover& hover() { return *hover_; }
    EditHistory& history() { return *history_; }
    GridEditor* grid() const { return grid_; }
    const ModuleState& state() const { return state_; }
    PageViews& views() { return views_; }

    // The window's focusable controls in the order Tab visits them: the page's controls in
    // reading order (and the grid), then the tab bar and the model buttons as one stop each
    // (their current button), then the command buttons.
    std::vector<QWidget*> focusOrder() const;
    // The next (step 1) or previous (step -1) tab the model has, in the bar's order, pressed as
    // a click presses it; Ctrl+Tab, Ctrl+Shift+Tab, Ctrl+PgDown and Ctrl+PgUp do this and put
    // the focus on the new page's first control, the arrows on the tab bar keep it there.
    void switchTabBy(int step);
    // The next or previous model button, pressed as a click presses it (the arrows on them).
    void switchModelBy(int step);
    // Puts the keyboard focus on the page's first control, with the focus ring showing.
    void focusFirstControl();

    // Window actions catch errors at their edge and hand them here; the default shows a message
    // box. Tests replace it.
    void setErrorReporter(std::function<void(const QString&)> reporter);

    // What the transmit command starts and stops: the plug-in's transmission. `start` is true
    // when a transmission started.
    struct TransmissionControl {
        std::function<bool()> start;
        std::function<void()> stop;
    };
    void setTransmissionControl(TransmissionControl control);
    // The transmission's reports: its progress text, and its end (the labels go and the
    // transmit button shows its idle picture).
    void showTransmissionProgress(const QString& text);
    void transmissionEnded();
    int transmissionStep() const;

signals:
    // A transmission ended: it ran to its end or was stopped.
    void transmissionStopped();

protected:
    void closeEvent(QCloseEvent* e) override;
    void showEvent(QShowEvent* e) override;
    bool focusNextPrevChild(bool next) override;
    void reject() override;

private:
    void buildChrome();
    void unload();
    void report(const QString& message);
    void runGuarded(const std::function<void()>& action);
    void showCommandNormal(int i);

    void buildButtonRows();
    const ButtonArt& art();
    std::vector<QWidget*> chromeFocusOrder() const;
    std::vector<ImageButton*> tabBarOrder() const;
    int modeButtonIndex() const;
    std::array<std::uint8_t, SystemImage::kSize> readHostImage() const;
    void imageChanged();
    void refreshPage();
    void showTabPicture(int tab, int picture);
    void showModePicture(int button, int picture);
    void showCommandPicture(int button, int picture);
    void showModeChosen(int button);
    void runCommand(int button);

    ModuleState& state_;
    ButtonArt art_;
    std::array<ImageButton*, 5> modeButtons_{};
    std::array<ImageButton*, 13> tabButtons_{};
    std::array<ImageButton*, 4> commandButtons_{};
    std::unique_ptr<ButtonPress> modePress_;
    std::unique_ptr<ButtonPress> tabPress_;
    std::unique_ptr<ButtonPress> commandPress_;
    QLabel* txWarning_ = nullptr;
    QLabel* txProgress_ = nullptr;
    PageArea* pageArea_ = nullptr;
    std::unique_ptr<ControlPools> pools_;
    std::unique_ptr<PageBuilder> builder_;
    ValueBinding* binding_ = nullptr;
    EditHistory* history_ = nullptr;
    KeyboardNavigation* keys_ = nullptr;
    FocusRing* focusRing_ = nullptr;
    bool refreshing_ = false;
    OptionHover* hover_ = nullptr;
    GridEditor* grid_ = nullptr;

    int currentPage_ = -1;
    int currentTab_ = -1;
    PageViews views_;
    bool transmitted_ = false;
    bool loaded_ = false;
    QString lastError_;
    std::function<void(const QString&)> errorReporter_;
    TransmissionControl transmission_;
};

} // namespace ferrule
