// The main window: owner of the capture pipeline, the panels, the actions and
// the device watchdog. Its definition is split by concern, one file each.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include <QAudioDevice>
#include <QAudioFormat>
#include <QCameraDevice>
#include <QCameraFormat>
#include <QImageCapture>
#include <QList>
#include <QMainWindow>
#include <QMediaCaptureSession>
#include <QMediaRecorder>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QModelIndex>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <QVideoFrame>
#include <QVideoSink>

#include "hospital/caseinformation.h"
#include "hospital/dicomobjects.h"
#include "imaging/framefilters.h"
#include "imaging/liveframepipeline.h"
#include "mainwindow/recordingguard.h"
#include "storage/recordinginformation.h"
#include "widgets/orvixframerenderer.h"

class QAction;
class QAudioInput;
class QAudioSink;
class MicrophoneLevel;
class FootSwitch;
class CameraButton;
class QCheckBox;
class QComboBox;
class QDialog;
class ArchiveQueue;
class CommitmentListener;
class HospitalSettingsDialog;
class TeachingExportDialog;
class QProgressBar;
class WorklistDialog;
class QCamera;
class QFrame;
class QGridLayout;
class QHBoxLayout;
class QIODevice;
class QLabel;
class QLineEdit;
class QListView;
class QMenu;
class QMenuBar;
class QMessageBox;
class QPainter;
class QPushButton;
class QSlider;
class QSplitter;
class QStackedWidget;
class QStandardItemModel;
class QVBoxLayout;

class AnimationLabel;
class AudioInfo;
class OrvixDelayTask;
class OrvixDeviceWatchDogTask;
class OrvixFileSplitTask;
class OrvixImageViewWidget;
class OrvixMediaPlayerWidget;
class OrvixStorageModel;
class OrvixVideoWidget;
class WaitingForCameraWidget;

class MainWindow : public QMainWindow, public OrvixFrameRenderer
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MainWindow)

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    // The frame renderer; the live video widget calls it from its paint event.
    void renderFrame(QPainter &painter) override;

    // Read-only views for the panels' owners and for tests.
    bool isCameraLive() const { return cameraLive; }
    bool isFullScreenFlagSet() const { return fullScreen; }
    qint64 currentSizeLimit() const { return sizeLimit; }
    // The size a movie file is split at: the user's limit, and while movies
    // go to the archive by themselves no more than one archive object holds.
    qint64 splitSize() const;
    int currentResolutionIndex() const { return resolutionIndex; }
    int currentRotationMode() const { return rotationMode; }
    // A camera restart has not shown a frame in its format yet.
    bool isCameraRestarting() const { return formatSettling; }
    const QList<QCameraFormat> &formatsOnOffer() const { return cameraFormats; }
    const QList<QCameraDevice> &usableCameras() const { return availableCameras; }
    QCameraDevice runningCameraDevice() const { return startedCameraDevice; }
    QAudioDevice chosenMicrophoneDevice() const { return chosenMicrophone; }
    QCamera *currentCamera() const { return camera; }
    QAudioInput *currentAudioInput() const { return audioInput; }
    // The event node the running camera's button is read from; empty when none.
    QString cameraButtonNode() const;
    QMediaRecorder *currentRecorder() const { return recorder; }
    // The live view's frame path: its counts and costs, for measurements.
    LiveFramePipeline &liveView() { return *livePipeline; }
    const PictureAdjustments &pictureAdjustments() const { return adjustments; }
    QList<QAction *> resolutionActionList() const { return resolutionActions; }
    QList<QAction *> rotationActionList() const { return rotationActions; }
    std::array<QAction *, 7> sizeActionList() const { return sizeActions; }
    AnimationLabel *levelMeter() const { return levelMeterLabel; }
    QPushButton *recordingTimeBadge() const { return recordTimeBadge; }
    // The movie file being written and watched; empty when none is.
    QString recordingFile() const { return recordingMoviePath; }
    // Shows the stored storage root in its field, the free-space label and
    // the storage browser. A first start stores the root only after the
    // window is built; start-up calls this once the folders exist.
    void showStoredStorageRoot();

signals:
    void setSliderValue(int);

public slots:
    // mainwindow_capture.cpp
    void cameraDropped(QList<QCameraDevice> droppedCameras);
    void cameraConnected(QList<QCameraDevice> connectedCameras);
    void setCamera(QCameraDevice cameraInfo);
    void handleVideoFrame(QVideoFrame videoframe);
    void updateAudioOutVolum(float volume);
    void volumeChanged(int level);
    void muteChanged(bool muted);
    void audioVolumChange(double level);

    // mainwindow_states.cpp
    void setupInvaildUIState();
    void setupIdleUIState();
    void setupRecordingUIState();
    void setupMediaUIState();
    void liveSetup();

    // mainwindow_menus.cpp
    void resolutionTo1st();
    void resolutionTo2nd();
    void resolutionTo3rd();
    void resolutionTo4th();
    void rotationNone();
    void rotation180Degree();
    void rotationMirror();
    void rotation180DegreeWithMirror();
    void toggleFullScreenMode(bool on);

    // mainwindow_recording.cpp
    void captureVideo();
    void pauseCaptureVideo();
    void splitVideoFile();
    void updateRecorderState(QMediaRecorder::RecorderState state);
    void updateRecordTime(qlonglong duration);
    void recorderError(QMediaRecorder::Error error);
    void hideFocusRect();
    void limitSizeTo1GB();
    void limitSizeTo2GB();
    void limitSizeTo3GB();
    void limitSizeTo4GB();
    void limitSizeTo5GB();
    void limitSizeTo10GB();
    void limitSizeToNoLimit();

    // mainwindow_snapshot.cpp
    void captureStillImage();
    void readyForCapture(bool ready);
    void capturedImage(int id, QImage preview);
    void imageSaved(int id, QString fileName);
    void captureError(int id, QImageCapture::Error error, QString errorString);

    // mainwindow_information.cpp
    void selectionChanged(QModelIndex index);
    void toggleInformationEdit();
    void rollbackInformation();

    // mainwindow_storage.cpp
    void removeSelectedFile();
    // Copies for teaching, without the patient.
    void showTeachingExport();
    void updateStorageRoot();
    void openMoviesFolder();
    void openImagesFolder();

    // mainwindow_dialogs.cpp
    void videoSettings();
    void showColorDialog();
    void help();
    void openLogFolder();
    void showFootSwitchDialog();
    void version();
    void setBrightness(int value);
    void setContrast(int value);
    void setHue(int value);
    void setStaturation(int value);
    void setWhiteBal(int value);
    void setGamma(int value);
    void setBacklight(int value);
    void setGain(int value);
    void setColorEnabel(int value);
    void setSharpness(int value);
    void setExposure(int value);
    void brightnessClick();
    void contrastClick();
    void hueClick();
    void staturationClick();
    void whitebalClick();
    void gammaClick();
    void backlightClick();
    void gainClick();
    void colorenableClick();
    void sharpnessClick();
    void exposureClick();
    void hz_50_checked(Qt::CheckState state);
    void hz_60_checked(Qt::CheckState state);
    void setColorDefault();
    void updateCurrentMediaDevice();
    void videoDefaultSet();

    // mainwindow_hospital.cpp
    void showHospitalSettings();
    void chooseFromWorklist();
    // Ends the patient's case and clears the patient for the next one.
    void finishCase();
    void sendSelectedToArchive();

    // The dialogs once built, for tests; null before.
    QDialog *videoQualityDialog() const { return colorDialog; }
    QDialog *recordDeviceDialog() const { return deviceDialog; }
    QDialog *versionDialog() const { return versionBox; }
    HospitalSettingsDialog *hospitalSettingsDialog() const;
    WorklistDialog *worklistDialog() const;
    // The archive's view of the next recording: the worklist entry chosen
    // for it, or a study of its own for a patient typed by hand.
    CaseInformation liveCase();
    ArchiveQueue *archive() const { return archiveQueue; }

protected:
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // mainwindow.cpp: construction steps that other files fill
    QSize initialSize() const;
    void takeDownCamera();
    void readSettings();
    void fillRecognisedDevices();
    void startDeviceWatchDog();

    // mainwindow_panels.cpp
    void setupCentralLayout();
    void setupMainFrame();
    void setupControlPanel();
    void setupVolumeFrame();
    void setupMiscFrame();
    void setupInformationPanel();
    void setupFilePreviewPanel();

    // mainwindow_menus.cpp
    void createResolutionAndRotationActions();
    void createActions();
    void createMenus();
    void applyResolution(int index);
    void applyRotation(int mode);
    void setFullScreenActions(bool checked, bool enabled);

    // mainwindow_capture.cpp
    void discoverAvailableCameras();
    void chooseCameraFormat();
    QList<QCameraFormat> thirtyFpsFormats(const QCameraDevice &device) const;
    void fillResolutionMenu();
    void setupLevelMeter();
    void applyMicrophoneControls();
    // What a pedal of the foot switch does; see FootSwitch::Pedal.
    void footPedal(int pedal);
    void deleteAudioSource();
    // The running camera's part of the session, taken down and forgotten.
    void deletePipeline();
    void showWaitingPage();
    void startLiveView();
    void logFrameStatistics();
    void adjustmentsChanged();
    void restartCamera(const QCameraFormat &format);
    void awaitSettledFormat();
    void formatSettled();

    // mainwindow_recording.cpp
    void applySizeLimitEntry(int entry);
    void restoreSizeLimitEntry();
    void checkSizeLimitEntryAtStart(int storedValue);
    void setupRecordingGuard();
    void abortFileSplitTask();
    void forgetSplitDelay();
    void stopRecording();
    void stopRecordingOnceStarted();
    void stopWhenWritten();
    void showFileNameHint();
    void beginMovieFile(const QString &path);
    void watchMovieFile(const QString &path);
    void continueCaptureVideo();
    static QString storageRoot();
    QString newMoviePath() const;
    RecordingInformation panelInformation() const;
    RecordingInformation liveRecordingInformation() const;
    void noteRecorderError(QMediaRecorder::Error error, const QString &errorString);
    static QString folderProblem(const QString &path);
    QString movieFileProblem(const QString &path, bool exists) const;
    void recordingFailed(const QString &reason);
    bool roomToStart(const QString &path);
    bool nameFitsFileSystem(const QString &path);
    static QString movieFolderNote(const QString &path);
    void checkRecording();
    void showRecordingWarning(const QString &text);
    void hideRecordingTime();
    bool removeEmptyMovie(const QString &path, bool tell = true);

    // mainwindow_snapshot.cpp
    void noteCaptureError(int id, QImageCapture::Error error, const QString &errorString);
    void checkSnapshots();

    // mainwindow_information.cpp
    void refillLiveInformation();
    void stopMediaPlayer();
    QString informationText(int field) const;
    void setInformationText(int field, const QString &text);
    void stashLiveInformation();
    void showBrowsedInformation();
    void enableInformationFields(bool on);

    // mainwindow_storage.cpp
    void setStorageBrowserRoot(const QString &root);

    // mainwindow_dialogs.cpp
    void buildColorDialog();
    void autoClicked(int row);
    void buildDeviceDialog();

    // Capture pipeline; the by-value members in the order they are made.
    // The video sink and the render work, on threads of their own.
    std::unique_ptr<LiveFramePipeline> livePipeline;
    QAudioDevice audioOutputDevice;
    QVideoFrame currentFrame;
    QStringList recognisedNames;
    QStringList recognisedIds;
    QList<QCameraDevice> availableCameras;
    QMediaCaptureSession captureSession;
    QList<QCameraFormat> cameraFormats;
    QList<QSize> resolutions;
    std::array<QString, 5> liveInformation; // file name, doctor, patient, hospital, comment
    QString currentMoviePath;
    QCameraDevice startedCameraDevice;
    QTimer focusHintTimer;
    // A camera restart waits while the last one has not shown a frame yet;
    // only the newest waits (see restartCamera).
    QTimer formatSettleTimer;
    bool formatSettling = false;
    QSize settlingSize;
    bool restartQueued = false;
    QCameraFormat queuedFormat;
    QCameraDevice currentCameraDevice;
    QAudioDevice chosenMicrophone;
    // The microphone picked in the record device dialog; it wins over the
    // recognised one while it is attached.
    QAudioDevice userMicrophone;

    // Made per camera, without a parent, deleted here.
    QCamera *camera = nullptr;
    QMediaRecorder *recorder = nullptr;
    QImageCapture *imageCapture = nullptr;
    QAudioInput *audioInput = nullptr;
    AudioInfo *audioInfo = nullptr;
    std::unique_ptr<MicrophoneLevel> microphoneLevel;
    std::vector<std::unique_ptr<MicrophoneLevel>> retiredMicrophoneLevels;
    QAudioSink *audioSink = nullptr;

    OrvixDeviceWatchDogTask *watchDog = nullptr;
    // The watcher of the file being written. It lets itself go as soon as it
    // has said "split", on its own thread, so it is only ever reached
    // through a guard, and its signal through the connection.
    QPointer<OrvixFileSplitTask> fileSplitTask;
    QMetaObject::Connection fileSplitConnection;
    QPointer<OrvixDelayTask> splitDelayTask; // the wait before the next file of a split

    // The user's recording, from Record to Stop across the files of a split.
    // Each start and stop begins a new series: a call still queued from an
    // earlier one (a split, the next file) finds its series over.
    bool recordingWanted = false;
    quint64 recordingSeries = 0;
    QString lastMovieFile; // the file begun last, for the notices

    // The recording guard: the file being written, and what was said of it.
    QString recordingMoviePath;
    QString finishingMoviePath; // stopped, not yet finished
    QString lastRecorderError;
    RecordingGuard recordingGuard;
    QTimer recordingGuardTimer;
    QTimer perfLogTimer;
    QElapsedTimer recordingClock;
    bool spaceLowWarned = false;
    // A stop waits for the file's first picture and sound.
    QTimer stopWaitTimer;
    QDeadlineTimer stopWaitDeadline;
    QPointer<QMessageBox> recordingWarning;
    void showNotice(QPointer<QMessageBox> &box, const QString &title, const QString &name, const QString &text);
    // Snapshots asked for and not yet saved, each with the time it is given.
    QList<std::pair<QString, QDeadlineTimer>> pendingSnapshots;
    QTimer snapshotGuardTimer;
    QString lastCaptureError;

    // Settings mirrors and state.
    qint64 sizeLimit = 0;
    float formatFrameRate = 30.0f;
    int resolutionIndex = 0;
    int rotationMode = 0;
    PictureAdjustments adjustments;
    bool cameraLive = false;
    bool liveInformationShown = true;
    bool fullScreen = false;
    bool splitPending = false;
    bool imageCapturePending = false;
    int recordHours = 0, recordMinutes = 0, recordSeconds = 0;
    int offsetHours = 0, offsetMinutes = 0, offsetSeconds = 0;

    // Panels, owned through their Qt parents.
    QSplitter *centralSplitter = nullptr;
    QWidget *mainFrameWidget = nullptr;
    QVBoxLayout *mainFrameLayout = nullptr;
    QFrame *playersFrame = nullptr;
    QStackedWidget *stackedPlayers = nullptr;
    WaitingForCameraWidget *waitingWidget = nullptr;
    OrvixVideoWidget *videoWidget = nullptr;
    std::unique_ptr<QFrame> viewfinderFrame; // left parentless on purpose
    OrvixImageViewWidget *imageViewWidget = nullptr;
    OrvixMediaPlayerWidget *mediaPlayerWidget = nullptr;
    QPushButton *recordTimeBadge = nullptr;
    QFrame *controlPanelFrame = nullptr;
    QPushButton *resolutionButton = nullptr;
    QPushButton *rotationButton = nullptr;
    QPushButton *imageCaptureButton = nullptr;
    QPushButton *videoCaptureButton = nullptr;
    AnimationLabel *recordingAnimationLabel = nullptr;
    QFrame *volumeFrame = nullptr;
    QSlider *volumeSlider = nullptr;
    QPushButton *muteButton = nullptr;
    AnimationLabel *levelMeterLabel = nullptr;
    QPushButton *liveButton = nullptr;
    QWidget *miscFrameWidget = nullptr;
    QWidget *informationFrameWidget = nullptr;
    QWidget *filePreviewFrameWidget = nullptr;
    QPushButton *informationEditButton = nullptr;
    QPushButton *informationRefreshButton = nullptr;
    QPushButton *informationWorklistButton = nullptr;
    QAction *hospitalAction = nullptr;
    QPointer<HospitalSettingsDialog> hospitalDialog;
    QPointer<WorklistDialog> worklistBox;
    WorklistEntry chosenWorklistEntry;
    QString chosenWorklistName;  // what the entry put into the patient field
    QString typedCaseStudyUid;   // the study of a patient typed by hand
    QString caseKey;             // the patient, ID and day the study belongs to
    QDateTime caseStarted;       // the study's one date and time
    QPushButton *finishCaseButton = nullptr;
    QAction *finishCaseAction = nullptr;
    // The case under way: begun by its first movie or snapshot.
    struct OpenCase
    {
        QString key;      // as caseKey
        QString stepUid;  // its performed step, when the hospital hears of it
        QString typedStudyUid;
        QDateTime started;
        QStringList files;
        CaseInformation information;
    } openCase;
    void addFinishCaseButton(QHBoxLayout *headerLayout, QWidget *header);
    // The storage browser's current file; empty when none is.
    QString selectedFilePath() const;
    // mainwindow_accessibility.cpp
    void setUpAccessibility();
    static QPushButton *headerButton(const QString &name, const QString &text, const QString &tip, QWidget *header);
    CaseInformation caseOfNewFile(const QString &file);
    void startCase(const CaseInformation &information);
    void endOpenCase();
    void updateFinishCaseButton();
    void saveOpenCase() const;
    void offerToFinishOpenCase();
    QLabel *patientIdLabel = nullptr;
    QLineEdit *patientIdField = nullptr; // the patient's ID, for the archive
    QString livePatientId;       // put aside while a stored file is shown
    QString recordingSeriesUid;  // one series per recording, over its files
    int recordingFileNumber = 0; // the current file's number in that series
    void addWorklistButton(QHBoxLayout *headerLayout, QWidget *header);
    void wireWorklistButton();
    void updateWorklistButton();
    void forgetWorklistEntryIfRenamed(const QString &patient);
    void addPatientIdField(QGridLayout *grid, QWidget *body);
    void updatePatientIdField();
    QString livePatientIdText() const;
    void showArchivedPatientId();
    // `before`: what the movie went out with before this correction.
    void saveBrowsedPatientId(const ObjectContext &before);
    void updateArchiveButton();
    QString archiveSummary(const QString &file) const;
    bool isBeingRecorded(const QString &file) const;
    ArchiveQueue *archiveQueue = nullptr;
    CommitmentListener *commitmentListener = nullptr;
    void updateCommitmentListener();
    // Removes movies the archive keeps when the disk runs short, if chosen.
    void relieveDisk();
    QTimer spaceTimer;
    QTimer relieveTimer;
    QPushButton *archiveSendButton = nullptr;
    QProgressBar *archiveProgress = nullptr;
    QPointer<QMessageBox> archiveNotice;
    QString snapshotStudyUid;   // snapshots of one study share a series
    QString snapshotSeriesUid;
    int snapshotInstance = 0;
    void setupArchive(QHBoxLayout *headerLayout, QWidget *header, QVBoxLayout *bodyLayout, QWidget *body);
    ObjectContext movieContext(const QString &moviePath) const;
    ObjectContext snapshotContext(const QString &picturePath);
    void movieFinished(const QString &moviePath);
    void queueUnsentMovies();
    void snapshotKept(const QString &picturePath);
    void showArchiveProgress(const QString &file, qint64 sent, qint64 total);
    void showArchiveProblem(const QString &message);
    // Date, File Name, Doctor Name, Patient Name, Hospital Name, Comment.
    std::array<QWidget *, 6> informationFields {};
    QLabel *storageFreeSpaceLabel = nullptr;
    QLineEdit *storageLocationEdit = nullptr;
    QListView *thumbnailView = nullptr;
    OrvixStorageModel *storageModel = nullptr;
    QPushButton *movieFolderButton = nullptr;
    QPushButton *imageFolderButton = nullptr;
    QPushButton *removeFileButton = nullptr;
    QPushButton *exportButton = nullptr;
    QPointer<TeachingExportDialog> teachingExportDialog;
    QPushButton *storageBrowseButton = nullptr;

    // Dialogs, built on first use and kept.
    QDialog *colorDialog = nullptr;
    std::array<QSlider *, 11> colorSliders {};
    std::array<QPushButton *, 11> autoButtons {};
    QCheckBox *hz50Box = nullptr;
    QCheckBox *hz60Box = nullptr;
    QDialog *deviceDialog = nullptr;
    QFrame *deviceFrame = nullptr;
    std::array<std::pair<QLabel *, QComboBox *>, 7> deviceRows {};
    QDialog *versionBox = nullptr;

    // Actions and menus.
    QList<QAction *> resolutionActions; // 1920 x 1080, 1280 x 720, 640 x 480, 640 x 630
    QList<QAction *> rotationActions;   // 0, 180º, Mirror, 180º Mirror
    QAction *startAction = nullptr;
    QAction *stopAction = nullptr;
    QAction *pauseAction = nullptr;
    QAction *liveAction = nullptr;
    std::array<QAction *, 7> sizeActions {}; // 1, 2, 3, 4, 5, 10 GB, no limit
    QAction *snapShotAction = nullptr;
    QAction *fullScreenAction = nullptr;
    QAction *fullScreenWindowAction = nullptr;
    QAction *recordDeviceAction = nullptr;
    QAction *videoQualityAction = nullptr;
    QAction *storagePathAction = nullptr;
    QAction *helpAction = nullptr;
    QAction *versionAction = nullptr;
    QAction *logFolderAction = nullptr;
    QAction *footSwitchAction = nullptr;
    FootSwitch *footSwitch = nullptr;
    CameraButton *cameraButton = nullptr;
    QMenuBar *mainMenuBar = nullptr;
    QMenu *rotationMenu = nullptr;
    QMenu *resolutionMenu = nullptr;
};
