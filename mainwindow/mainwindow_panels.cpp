// MainWindow: the builders of the widget tree, in the order they nest.
#include "mainwindow.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QSlider>
#include <QSplitter>
#include <QStackedWidget>
#include <QStandardItemModel>
#include <QTextEdit>
#include <QVBoxLayout>

#include "mainwindow/panelstyles.h"
#include "widgets/animationlabel.h"
#include "storage/orvixstoragemodel.h"
#include "widgets/orviximageviewwidget.h"
#include "widgets/orvixmediaplayerwidget.h"
#include "widgets/orvixvideowidget.h"
#include "widgets/waitingforcamerawidget.h"

namespace {
QPushButton *fixedButton(const QString &name, const QSize &size, QWidget *parent)
{
    auto *button = new QPushButton(parent);
    button->setObjectName(name);
    button->setFixedSize(size);
    return button;
}

QHBoxLayout *hbox(const QString &name, QWidget *on)
{
    auto *layout = new QHBoxLayout(on);
    layout->setObjectName(name);
    layout->setSpacing(0);
    layout->setContentsMargins(0, 0, 0, 0);
    return layout;
}

QVBoxLayout *vbox(const QString &name, QWidget *on)
{
    auto *layout = new QVBoxLayout(on);
    layout->setObjectName(name);
    layout->setSpacing(0);
    layout->setContentsMargins(0, 0, 0, 0);
    return layout;
}

const QString lightText = QStringLiteral("rgb(192,192,192)");
const QString dimText = QStringLiteral("rgb(96,96,96)");

// Most image buttons write light grey and grey out when disabled.
PanelStyles::ImageButton labelledButton(const QString &objectName, const QString &stem)
{
    PanelStyles::ImageButton button = PanelStyles::imageButton(objectName, stem);
    button.textColor = lightText;
    button.disabledTextColor = dimText;
    return button;
}
}

void MainWindow::setupCentralLayout()
{
    setObjectName(QStringLiteral("MainWindow"));
    setWindowTitle(QStringLiteral("Orvix"));

    centralSplitter = new QSplitter(this);
    centralSplitter->setObjectName(QStringLiteral("CentralSplitter"));
    centralSplitter->setStyleSheet(QStringLiteral("QSplitter#CentralSplitter {background-color: rgb(34, 34, 34); }"));

    mainFrameWidget = new QWidget(centralSplitter);
    mainFrameWidget->setObjectName(QStringLiteral("MainFrameWidget"));
    miscFrameWidget = new QWidget(centralSplitter);
    miscFrameWidget->setObjectName(QStringLiteral("MiscFrameWidget"));
    centralSplitter->insertWidget(0, mainFrameWidget);
    centralSplitter->insertWidget(1, miscFrameWidget);
    centralSplitter->setStretchFactor(0, 5);
    centralSplitter->setStretchFactor(1, 2);

    setupMainFrame();
    setupMiscFrame();
    setCentralWidget(centralSplitter);
}

void MainWindow::setupMainFrame()
{
    mainFrameLayout = vbox(QStringLiteral("MainFrameWidgetLayout"), mainFrameWidget);

    auto *badgeRow = new QFrame(mainFrameWidget);
    auto *badgeLayout = new QHBoxLayout(badgeRow);
    badgeLayout->setContentsMargins(0, 0, 0, 0);
    badgeLayout->setSpacing(0);
    recordTimeBadge = new QPushButton(badgeRow);
    recordTimeBadge->setFixedWidth(80);
    recordTimeBadge->hide();
    // "padding:6x" is malformed and ignored by Qt; kept as it always was.
    recordTimeBadge->setStyleSheet(QStringLiteral(
            "QPushButton{\nbackground-color:red;color:white;border-style:outside;border-width:2px;border-radius:10px;"
            "border-color:transparent;font: bold 14px;padding:6x;}\n"));
    badgeLayout->addStretch(10);
    badgeLayout->addWidget(recordTimeBadge);
    badgeLayout->addStretch(10);
    mainFrameLayout->addWidget(badgeRow);

    playersFrame = new QFrame(mainFrameWidget);
    auto *playersLayout = vbox(QString(), playersFrame);
    stackedPlayers = new QStackedWidget(playersFrame);
    stackedPlayers->setObjectName(QStringLiteral("StackedPlayersWidget"));
    playersLayout->addWidget(stackedPlayers);

    waitingWidget = new WaitingForCameraWidget(stackedPlayers);
    waitingWidget->setObjectName(QStringLiteral("WaitingForCameraWidget"));
    waitingWidget->setStyleSheet(QStringLiteral("QFrame#WaitingForCameraWidget {background-color: black; }"));

    // The viewfinder first goes into a frame of its own; adding it to the
    // stack takes it out again and the frame never shows. Harmless leftover.
    viewfinderFrame = std::make_unique<QFrame>();
    viewfinderFrame->setObjectName(QStringLiteral("CameraViewfinderFrame"));
    viewfinderFrame->setStyleSheet(QStringLiteral("QFrame#CameraViewfinderFrame {background-color: black; }"));
    auto *viewfinderLayout = new QVBoxLayout(viewfinderFrame.get());
    videoWidget = new OrvixVideoWidget(this, viewfinderFrame.get());
    videoWidget->setObjectName(QStringLiteral("CameraViewfinder"));
    viewfinderLayout->addWidget(videoWidget);

    imageViewWidget = new OrvixImageViewWidget(stackedPlayers);
    imageViewWidget->setObjectName(QStringLiteral("ImageViewWidget"));
    mediaPlayerWidget = new OrvixMediaPlayerWidget(stackedPlayers);
    mediaPlayerWidget->setObjectName(QStringLiteral("MediaPlayerWidget"));

    stackedPlayers->addWidget(waitingWidget);
    stackedPlayers->addWidget(videoWidget);
    stackedPlayers->addWidget(imageViewWidget);
    stackedPlayers->addWidget(mediaPlayerWidget);
    stackedPlayers->setCurrentIndex(0);
    mainFrameLayout->addWidget(playersFrame);

    controlPanelFrame = new QFrame(mainFrameWidget);
    controlPanelFrame->setObjectName(QStringLiteral("ControlPanelFrame"));
    controlPanelFrame->setFixedHeight(70);
    controlPanelFrame->setStyleSheet(QStringLiteral(
            "QFrame#ControlPanelFrame {background: black url(:/res/ControlPanel/background.png);"
            "background-repeat: repeat-x;background-position: top left; }"));
    mainFrameLayout->addWidget(controlPanelFrame);

    setupControlPanel();
}

void MainWindow::setupControlPanel()
{
    auto *layout = hbox(QStringLiteral("ControlPanelFrameLayout"), controlPanelFrame);

    resolutionButton = fixedButton(QStringLiteral("ResolutionSetupButton"), QSize(111, 40), controlPanelFrame);
    resolutionButton->setFlat(true);
    resolutionButton->setAttribute(Qt::WA_LayoutUsesWidgetRect);
    resolutionButton->setText(tr("Resolution"));
    auto resolutionStyle = labelledButton(resolutionButton->objectName(), QStringLiteral("ControlPanel/button_resolution"));
    resolutionStyle.disabledTextColor = QStringLiteral("gray");
    resolutionStyle.extra = QStringLiteral("padding-left: 12px;");
    resolutionStyle.hideMenuIndicator = true;
    resolutionButton->setStyleSheet(PanelStyles::styleSheet(resolutionStyle));
    layout->addWidget(resolutionButton);

    rotationButton = fixedButton(QStringLiteral("RotationSetupButton"), QSize(107, 40), controlPanelFrame);
    rotationButton->setFlat(true);
    rotationButton->setAttribute(Qt::WA_LayoutUsesWidgetRect);
    rotationButton->setText(tr("Rotation"));
    auto rotationStyle = labelledButton(rotationButton->objectName(), QStringLiteral("ControlPanel/button_rotation"));
    rotationStyle.extra = QStringLiteral("padding-left: 10px;");
    rotationStyle.hideMenuIndicator = true;
    rotationButton->setStyleSheet(PanelStyles::styleSheet(rotationStyle));
    layout->addWidget(rotationButton);

    layout->addStretch();

    imageCaptureButton = fixedButton(QStringLiteral("ImageCaptureButton"), QSize(80, 50), controlPanelFrame);
    imageCaptureButton->setAttribute(Qt::WA_LayoutUsesWidgetRect);
    imageCaptureButton->setStyleSheet(PanelStyles::styleSheet(
            PanelStyles::imageButton(imageCaptureButton->objectName(), QStringLiteral("ControlPanel/button_image_capture"))));
    connect(imageCaptureButton, &QPushButton::clicked, this, &MainWindow::captureStillImage);
    layout->addWidget(imageCaptureButton);

    videoCaptureButton = fixedButton(QStringLiteral("VideoCaptureButton"), QSize(80, 50), controlPanelFrame);
    videoCaptureButton->setFlat(true);
    videoCaptureButton->setCheckable(true);
    auto videoStyle = PanelStyles::imageButton(videoCaptureButton->objectName(), QStringLiteral("ControlPanel/button_video_capture"));
    videoStyle.checkedNormal = QStringLiteral("ControlPanel/button_video_capturing_normal.png");
    videoStyle.checkedHover = QStringLiteral("ControlPanel/button_video_capturing_hover.png");
    // Disabled shows the not-capturing picture, checked or not.
    videoStyle.checkedDisabled = videoStyle.disabled;
    videoCaptureButton->setStyleSheet(PanelStyles::styleSheet(videoStyle));
    connect(videoCaptureButton, &QPushButton::clicked, this, &MainWindow::captureVideo);
    auto *videoButtonLayout = hbox(QStringLiteral("VideoCaptureButtonLayout"), videoCaptureButton);
    recordingAnimationLabel = new AnimationLabel(videoCaptureButton);
    recordingAnimationLabel->setObjectName(QStringLiteral("VideoCaptureAnimationLabel"));
    recordingAnimationLabel->setContentsMargins(0, 0, 0, 0);
    recordingAnimationLabel->loadFrames(QStringLiteral(":/res/Ani/ing"), 24, true);
    videoButtonLayout->addWidget(recordingAnimationLabel);
    layout->addWidget(videoCaptureButton);

    layout->addStretch();

    volumeFrame = new QFrame(controlPanelFrame);
    volumeFrame->setObjectName(QStringLiteral("VolumeControlFrame"));
    volumeFrame->setFixedSize(120, 40);
    volumeFrame->setContentsMargins(0, 0, 0, 0);
    volumeFrame->setStyleSheet(QStringLiteral(
            "QFrame#VolumeControlFrame {background-color: transparent;"
            "background-image: url(:/res/ControlPanel/frame_volume_control_normal.png);"
            "background-repeat: repeat-x;background-position: top left; }"));
    layout->addWidget(volumeFrame);
    setupVolumeFrame();

    layout->addSpacing(10);

    liveButton = fixedButton(QStringLiteral("LiveSetupButton"), QSize(69, 40), controlPanelFrame);
    liveButton->setFlat(true);
    liveButton->setAttribute(Qt::WA_LayoutUsesWidgetRect);
    liveButton->setText(tr("Live"));
    auto liveStyle = labelledButton(liveButton->objectName(), QStringLiteral("ControlPanel/button_live"));
    liveStyle.extra = QStringLiteral("padding-left: 24px;");
    liveButton->setStyleSheet(PanelStyles::styleSheet(liveStyle));
    connect(liveButton, &QPushButton::clicked, this, &MainWindow::liveSetup);
    layout->addWidget(liveButton);
}

void MainWindow::setupVolumeFrame()
{
    auto *layout = hbox(QStringLiteral("VolumeButtonFrameLayout"), volumeFrame);
    layout->addStretch();

    volumeSlider = new QSlider(Qt::Horizontal, volumeFrame);
    volumeSlider->setObjectName(QStringLiteral("VolumeControlSlider"));
    volumeSlider->setRange(0, 100);
    volumeSlider->setFixedSize(60, 40);
    volumeSlider->setAttribute(Qt::WA_LayoutUsesWidgetRect);
    volumeSlider->setStyleSheet(PanelStyles::volumeSlider());
    connect(volumeSlider, &QSlider::sliderMoved, this, &MainWindow::volumeChanged);
    layout->addWidget(volumeSlider);
    layout->addSpacing(5);

    muteButton = fixedButton(QStringLiteral("VolumeLevelButton"), QSize(40, 40), volumeFrame);
    muteButton->setAttribute(Qt::WA_LayoutUsesWidgetRect);
    muteButton->setCheckable(true);
    muteButton->setFlat(true);
    auto muteStyle = labelledButton(muteButton->objectName(), QStringLiteral("ControlPanel/button_volume"));
    muteStyle.checkedNormal = QStringLiteral("ControlPanel/button_muted_normal.png");
    muteStyle.checkedHover = QStringLiteral("ControlPanel/button_muted_hover.png");
    muteStyle.checkedDisabled = QStringLiteral("ControlPanel/button_muted_disabled.png");
    muteButton->setStyleSheet(PanelStyles::styleSheet(muteStyle));
    connect(muteButton, &QPushButton::clicked, this, &MainWindow::muteChanged);
    layout->addWidget(muteButton);

    // The name is used twice on purpose.
    auto *meterLayout = new QHBoxLayout(muteButton);
    meterLayout->setObjectName(QStringLiteral("VolumeButtonFrameLayout"));
    meterLayout->setContentsMargins(0, 0, 0, 0);
    meterLayout->addSpacing(25);
    levelMeterLabel = new AnimationLabel(muteButton);
    levelMeterLabel->setObjectName(QStringLiteral("VolumeLevelLabel"));
    levelMeterLabel->setContentsMargins(0, 0, 0, 2);
    levelMeterLabel->loadFrames(QStringLiteral(":/res/Ani/levels"), 6, false);
    levelMeterLabel->start();
    // Unguided, the meter would cycle its frames as if it heard a full-scale
    // signal: it rests on its first frame until a microphone gives a level.
    levelMeterLabel->climbTo(0);
    meterLayout->addWidget(levelMeterLabel);
}

void MainWindow::setupMiscFrame()
{
    auto *layout = vbox(QStringLiteral("MiscFrameWidgetLayout"), miscFrameWidget);
    informationFrameWidget = new QWidget(miscFrameWidget);
    filePreviewFrameWidget = new QWidget(miscFrameWidget);
    layout->addWidget(informationFrameWidget);
    layout->addWidget(filePreviewFrameWidget);
    setupInformationPanel();
    setupFilePreviewPanel();
}

void MainWindow::setupInformationPanel()
{
    auto *layout = vbox(QStringLiteral("InformationFrameWidgetLayout"), informationFrameWidget);

    auto *header = new QFrame(informationFrameWidget);
    header->setObjectName(QStringLiteral("InformationHeaderFrame"));
    header->setFixedHeight(24);
    header->setContentsMargins(0, 0, 0, 0);
    header->setStyleSheet(QStringLiteral(
            "QFrame#InformationHeaderFrame {background-image: url(:/res/InformationPanel/header_background.png);"
            "background-repeat: repeat-x;background-position: top left; }"));
    auto *headerLayout = hbox(QStringLiteral("InformationHeaderFrameLayout"), header);
    headerLayout->setContentsMargins(5, 2, 0, 0);
    auto *title = new QLabel(tr("Information"), header);
    title->setObjectName(QStringLiteral("InformationTitleLabel"));
    title->setStyleSheet(QStringLiteral("QLabel#InformationTitleLabel {padding-top: -2px; color: white; }"));
    title->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    headerLayout->addWidget(title, 0, Qt::AlignVCenter);
    headerLayout->addStretch();
    addWorklistButton(headerLayout, header);
    addFinishCaseButton(headerLayout, header);

    informationEditButton = fixedButton(QStringLiteral("InformationEditButton"), QSize(23, 23), header);
    informationEditButton->setCheckable(true);
    informationEditButton->setFlat(true);
    auto editStyle = labelledButton(informationEditButton->objectName(), QStringLiteral("InformationPanel/button_edit"));
    editStyle.checkedNormal = QStringLiteral("InformationPanel/button_save_normal.png");
    editStyle.checkedHover = QStringLiteral("InformationPanel/button_save_hover.png");
    editStyle.checkedDisabled = QStringLiteral("InformationPanel/button_save_disabled.png");
    editStyle.centred = true;
    informationEditButton->setStyleSheet(PanelStyles::styleSheet(editStyle));
    connect(informationEditButton, &QPushButton::clicked, this, &MainWindow::toggleInformationEdit);
    headerLayout->addWidget(informationEditButton);

    informationRefreshButton = fixedButton(QStringLiteral("InformationRefreshButton"), QSize(23, 23), header);
    auto refreshStyle = labelledButton(informationRefreshButton->objectName(), QStringLiteral("InformationPanel/button_refresh"));
    refreshStyle.centred = true;
    informationRefreshButton->setStyleSheet(PanelStyles::styleSheet(refreshStyle));
    connect(informationRefreshButton, &QPushButton::clicked, this, &MainWindow::rollbackInformation);
    headerLayout->addWidget(informationRefreshButton);
    layout->addWidget(header);

    auto *body = new QFrame(informationFrameWidget);
    body->setObjectName(QStringLiteral("InformationBodyFrame"));
    body->setStyleSheet(QStringLiteral("QFrame#InformationBodyFrame {background-color: rgb(70, 70, 70); }"));
    body->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Maximum);
    auto *grid = new QGridLayout(body);
    grid->setSpacing(0);
    grid->setContentsMargins(0, 0, 0, 0);

    const QStringList labels { tr("Date"), tr("*File Name"), tr("Doctor Name"),
                               tr("Patient Name"), tr("Hospital Name"), tr("Comment") };
    const QStringList names { QStringLiteral("Date"), QStringLiteral("FileName"), QStringLiteral("DoctorName"),
                              QStringLiteral("PatientName"), QStringLiteral("HospitalName"), QStringLiteral("Comment") };
    for (int row = 0; row < 6; ++row) {
        auto *label = new QLabel(labels.at(row), body);
        label->setObjectName(QStringLiteral("Information%1Label").arg(names.at(row)));
        label->setStyleSheet(PanelStyles::informationLabel(label->objectName()));
        const QString fieldName = QStringLiteral("Information%1Edit").arg(names.at(row));
        QWidget *field = nullptr;
        if (row < 5) {
            auto *edit = new QLineEdit(body);
            edit->setObjectName(fieldName);
            edit->setStyleSheet(PanelStyles::informationField(QStringLiteral("QLineEdit"), fieldName));
            field = edit;
            grid->addWidget(label, row, 0);
            grid->addWidget(field, row, 1);
        } else {
            auto *edit = new QTextEdit(body);
            edit->setObjectName(fieldName);
            edit->setStyleSheet(PanelStyles::informationField(QStringLiteral("QTextEdit"), fieldName));
            edit->setFixedHeight(80);
            field = edit;
            grid->addWidget(label, 5, 0, 1, 2);
            grid->addWidget(field, 6, 0, 1, 2);
        }
        field->setAttribute(Qt::WA_MacShowFocusRect, false);
        informationFields[row] = field;
    }
    static_cast<QLineEdit *>(informationFields[0])->setReadOnly(true);
    addPatientIdField(grid, body);
    layout->addWidget(body);
    wireWorklistButton();
}

void MainWindow::setupFilePreviewPanel()
{
    auto *layout = vbox(QStringLiteral("FilePreviewFrameWidgetLayout"), filePreviewFrameWidget);

    auto *header = new QFrame(filePreviewFrameWidget);
    header->setObjectName(QStringLiteral("FilePreviewHeaderFrame"));
    header->setFixedHeight(24);
    header->setStyleSheet(QStringLiteral(
            "QFrame#FilePreviewHeaderFrame {background-image: url(:/res/FilePreviewPanel/header_background.png);"
            "background-repeat: repeat-x;background-position: top left; }"));
    auto *headerLayout = hbox(QStringLiteral("FilePreviewHeaderFrameLayout"), header);
    auto *title = new QLabel(tr("File Preview"), header);
    title->setObjectName(QStringLiteral("FilePreviewTitleLabel"));
    title->setStyleSheet(QStringLiteral("QLabel#FilePreviewTitleLabel {padding-top: -2px; color: white; }"));
    title->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    headerLayout->addWidget(title, 0, Qt::AlignVCenter);
    headerLayout->addStretch();
    exportButton = headerButton(QStringLiteral("FilePreviewExportButton"), tr("Export"),
                                tr("Copy movies and snapshots for teaching, without the patient"), header);
    connect(exportButton, &QPushButton::clicked, this, &MainWindow::showTeachingExport);
    headerLayout->addWidget(exportButton);
    headerLayout->addSpacing(4);
    removeFileButton = fixedButton(QStringLiteral("FilePreviewRemoveButton"), QSize(23, 23), header);
    removeFileButton->setAttribute(Qt::WA_LayoutUsesWidgetRect);
    auto removeStyle = labelledButton(removeFileButton->objectName(), QStringLiteral("FilePreviewPanel/button_remove"));
    removeStyle.centred = true;
    removeFileButton->setStyleSheet(PanelStyles::styleSheet(removeStyle));
    connect(removeFileButton, &QPushButton::clicked, this, &MainWindow::removeSelectedFile);
    headerLayout->addWidget(removeFileButton);
    layout->addWidget(header);

    // Shares its name with the information body so that one style serves both.
    auto *body = new QFrame(filePreviewFrameWidget);
    body->setObjectName(QStringLiteral("InformationBodyFrame"));
    body->setStyleSheet(QStringLiteral("QFrame#InformationBodyFrame {background-color: rgb(70, 70, 70); }"));
    auto *bodyLayout = new QVBoxLayout(body);
    bodyLayout->setObjectName(QStringLiteral("FilePreviewBodyFrameLayout"));

    auto *storageRow = new QWidget(body);
    auto *storageLayout = new QHBoxLayout(storageRow);
    // The storage row and the rest of this body keep Qt's default spacing.
    storageLayout->setObjectName(QStringLiteral("StorageBrowseWidgetLayout"));
    auto *storageLabel = new QLabel(tr("Storage"), storageRow);
    storageLabel->setObjectName(QStringLiteral("StorageLabel"));
    storageLabel->setStyleSheet(QStringLiteral("QLabel#StorageLabel {color: white; }"));
    storageLayout->addWidget(storageLabel);
    storageFreeSpaceLabel = new QLabel(storageRow);
    storageFreeSpaceLabel->setObjectName(QStringLiteral("StorageFreeSpaceLabel"));
    storageFreeSpaceLabel->setStyleSheet(QStringLiteral("QLabel#StorageFreeSpaceLabel {color: rgb(86, 183, 203);padding-top: 0; }"));
    storageLayout->addWidget(storageFreeSpaceLabel);
    storageLocationEdit = new QLineEdit(storageRow);
    storageLocationEdit->setObjectName(QStringLiteral("StorageLocationEdit"));
    storageLocationEdit->setStyleSheet(PanelStyles::informationField(QStringLiteral("QLineEdit"),
                                                                     storageLocationEdit->objectName(), QStringLiteral("20px")));
    auto *editLayout = hbox(QStringLiteral("StorageLocationEditLayout"), storageLocationEdit);
    editLayout->addStretch();
    storageBrowseButton = fixedButton(QStringLiteral("StorageBrowseButton"), QSize(22, 22), storageLocationEdit);
    storageBrowseButton->setCursor(Qt::ArrowCursor);
    auto browseStyle = labelledButton(storageBrowseButton->objectName(), QStringLiteral("FilePreviewPanel/button_folder"));
    browseStyle.centred = true;
    storageBrowseButton->setStyleSheet(PanelStyles::styleSheet(browseStyle));
    connect(storageBrowseButton, &QPushButton::clicked, this, &MainWindow::updateStorageRoot);
    editLayout->addWidget(storageBrowseButton);
    storageLayout->addWidget(storageLocationEdit);
    bodyLayout->addWidget(storageRow);

    thumbnailView = new QListView(body);
    thumbnailView->setObjectName(QStringLiteral("ThumbnailView"));
    storageModel = new OrvixStorageModel(this);
    thumbnailView->setModel(storageModel);
    thumbnailView->setViewMode(QListView::IconMode);
    thumbnailView->setIconSize(QSize(96, 54));
    thumbnailView->setSelectionMode(QAbstractItemView::SingleSelection);
    thumbnailView->setSelectionBehavior(QAbstractItemView::SelectRows);
    thumbnailView->setTextElideMode(Qt::ElideMiddle);
    // Thousands of items are laid out a batch at a time, not in one go.
    thumbnailView->setLayoutMode(QListView::Batched);
    // Every item in a cell of its own, whatever its icon: the icon mode's
    // default free placement keeps the place an item got when it had no icon
    // yet, and the icon that arrives later is drawn over the next item.
    thumbnailView->setMovement(QListView::Static);
    thumbnailView->setResizeMode(QListView::Adjust);
    thumbnailView->setUniformItemSizes(true);
    const int textLine = thumbnailView->fontMetrics().height();
    thumbnailView->setGridSize(QSize(96 + 2 * textLine, 54 + 2 * textLine));
    thumbnailView->setAttribute(Qt::WA_MacShowFocusRect, false);
    thumbnailView->setStyleSheet(QStringLiteral(
            "QListView#ThumbnailView {border: none; border-width: 0; color: rgb(192, 192, 192);"
            "background-color: rgb(58, 58, 58); }"));
    connect(thumbnailView, &QListView::doubleClicked, this, &MainWindow::selectionChanged);
    bodyLayout->addWidget(thumbnailView);
    setupArchive(headerLayout, header, bodyLayout, body);

    auto *shortCuts = new QWidget(body);
    auto *shortCutsLayout = new QHBoxLayout(shortCuts);
    shortCutsLayout->setObjectName(QStringLiteral("ShortCutsWidgetLayout"));
    movieFolderButton = new QPushButton(tr("Movie Folder"), shortCuts);
    movieFolderButton->setObjectName(QStringLiteral("MovieLocationButton"));
    movieFolderButton->setStyleSheet(PanelStyles::folderButton(movieFolderButton->objectName(),
                                                               QStringLiteral("FolderShortCuts/movies_folder.png")));
    connect(movieFolderButton, &QPushButton::clicked, this, &MainWindow::openMoviesFolder);
    imageFolderButton = new QPushButton(tr("Image Folder"), shortCuts);
    imageFolderButton->setObjectName(QStringLiteral("ImageLocationButton"));
    imageFolderButton->setStyleSheet(PanelStyles::folderButton(imageFolderButton->objectName(),
                                                               QStringLiteral("FolderShortCuts/images_folder.png")));
    connect(imageFolderButton, &QPushButton::clicked, this, &MainWindow::openImagesFolder);
    shortCutsLayout->addWidget(movieFolderButton);
    shortCutsLayout->addWidget(imageFolderButton);
    bodyLayout->addWidget(shortCuts);

    layout->addWidget(body);
}
