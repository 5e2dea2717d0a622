// MainWindow: names for screen readers, a keyboard way to every command,
// Tab through the panels in the order they are seen, and a focus that shows.
#include "mainwindow.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenuBar>
#include <QPushButton>
#include <QSlider>
#include <QTextEdit>

#include "widgets/orvixmediaplayerwidget.h"
#include "widgets/orvixvideowidget.h"

namespace {
// The colour of the panels' own highlights.
const QString focusRing = QStringLiteral("border: 2px solid rgb(86, 183, 203); border-radius: 4px;");

// Return opens the list's current file, as a double click does; Delete
// deletes it, as the bin button does (and asks first).
class ListKeys final : public QObject
{
public:
    ListKeys(QObject *parent, std::function<void()> open, std::function<void()> remove)
        : QObject(parent), open(std::move(open)), remove(std::move(remove))
    {
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        switch (static_cast<QKeyEvent *>(event)->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            open();
            return true;
        case Qt::Key_Delete:
            remove();
            return true;
        default:
            return false;
        }
    }

private:
    std::function<void()> open;
    std::function<void()> remove;
};

void describe(QWidget *widget, const QString &name, const QString &description = QString())
{
    if (!widget)
        return;
    widget->setAccessibleName(name);
    if (!description.isEmpty())
        widget->setAccessibleDescription(description);
}

// The image buttons draw no focus of their own: a ring shows it.
void showFocus(QWidget *widget, const QString &className = QStringLiteral("QPushButton"))
{
    if (widget)
        widget->setStyleSheet(widget->styleSheet()
                              + QStringLiteral("%1#%2:focus {%3}").arg(className, widget->objectName(), focusRing));
}
} // namespace

void MainWindow::setUpAccessibility()
{
    // Buttons whose picture is their only label.
    describe(imageCaptureButton, tr("Snapshot"), tr("Takes a snapshot of the live picture (F7)"));
    describe(videoCaptureButton, tr("Record"),
             tr("Starts the recording (F5); pressed again, stops it (F4). While paused, it resumes."));
    describe(muteButton, tr("Mute microphone"), tr("Pressed: the microphone is muted, and its sound is not recorded"));
    describe(informationEditButton, tr("Edit information"),
             tr("Lets the selected movie's information be changed; pressed again, saves it"));
    describe(informationRefreshButton, tr("Discard changes"), tr("Puts the information back as it was saved"));
    describe(removeFileButton, tr("Delete"), tr("Deletes the selected movie or snapshot, after asking"));
    describe(storageBrowseButton, tr("Choose storage folder"),
             tr("Chooses the folder that recordings and snapshots go into"));
    // Buttons with a text get a description where the text says little.
    describe(resolutionButton, tr("Resolution"), tr("The camera's picture size"));
    describe(rotationButton, tr("Rotation"), tr("How the live picture is turned on the screen"));
    describe(liveButton, tr("Live"), tr("Back to the live picture (F1)"));
    describe(recordTimeBadge, tr("Recording time"));
    describe(volumeSlider, tr("Microphone volume"));
    describe(storageLocationEdit, tr("Storage folder"));
    describe(thumbnailView, tr("Recorded movies and snapshots"),
             tr("Return opens the selected file; Delete deletes it, after asking"));
    describe(videoWidget, tr("Live picture"));
    describe(mainMenuBar, tr("Menu"));

    // Fields are named by their labels, as a screen reader reads a form.
    static const char *const fieldNames[6] = { "Date", "FileName", "DoctorName", "PatientName", "HospitalName", "Comment" };
    for (int row = 0; row < 6; ++row) {
        if (auto *label = findChild<QLabel *>(QStringLiteral("Information%1Label").arg(QLatin1String(fieldNames[row]))))
            label->setBuddy(informationFields[row]);
    }
    if (patientIdLabel && patientIdField)
        patientIdLabel->setBuddy(patientIdField);
    // Tab leaves the comment instead of typing a tab into it.
    static_cast<QTextEdit *>(informationFields[5])->setTabChangesFocus(true);

    // The keyboard and clicks on the groove set the volume as dragging does.
    connect(volumeSlider, &QSlider::actionTriggered, this, [this](int action) {
        if (action != QAbstractSlider::SliderMove)
            volumeChanged(volumeSlider->sliderPosition());
    });
    thumbnailView->installEventFilter(new ListKeys(
            thumbnailView,
            [this] {
                if (thumbnailView->currentIndex().isValid())
                    selectionChanged(thumbnailView->currentIndex());
            },
            [this] {
                if (thumbnailView->currentIndex().isValid())
                    removeSelectedFile();
            }));

    for (QPushButton *button : { resolutionButton, rotationButton, imageCaptureButton, videoCaptureButton, muteButton,
                                 liveButton, informationEditButton, informationRefreshButton, removeFileButton,
                                 storageBrowseButton, movieFolderButton, imageFolderButton })
        showFocus(button);
    for (int row = 0; row < 5; ++row)
        showFocus(informationFields[row], QStringLiteral("QLineEdit"));
    showFocus(informationFields[5], QStringLiteral("QTextEdit"));
    showFocus(patientIdField, QStringLiteral("QLineEdit"));
    showFocus(storageLocationEdit, QStringLiteral("QLineEdit"));
    showFocus(thumbnailView, QStringLiteral("QListView"));
    showFocus(volumeSlider, QStringLiteral("QSlider"));

    // Tab goes as the eye does: the picture's own controls, the control bar
    // left to right, then the right-hand column from the top.
    QList<QWidget *> order { mediaPlayerWidget ? mediaPlayerWidget->playButton() : nullptr,
                             mediaPlayerWidget ? mediaPlayerWidget->positionSlider() : nullptr,
                             resolutionButton, rotationButton, imageCaptureButton, videoCaptureButton, volumeSlider,
                             muteButton, liveButton, informationWorklistButton, finishCaseButton, informationEditButton,
                             informationRefreshButton };
    for (QWidget *field : informationFields)
        order.append(field);
    order += { patientIdField, exportButton, archiveSendButton, removeFileButton, storageLocationEdit,
               storageBrowseButton, thumbnailView, movieFolderButton, imageFolderButton };
    order.removeAll(nullptr);
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order.at(i - 1), order.at(i));
}
