#include "dicomobjects.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcfilefo.h>
#include <dcmtk/dcmdata/dcuid.h>
#include <dcmtk/dcmdata/libi2d/i2d.h>
#include <dcmtk/dcmdata/libi2d/i2djpgs.h>
#include <dcmtk/dcmdata/libi2d/i2dplvlp.h>

#include "hospital/dicomtext.h"
#include "hospital/mp4summary.h"

namespace {

void put(DcmItem &item, const DcmTagKey &tag, const QString &value)
{
    item.putAndInsertString(tag, value.toUtf8().constData());
}

// A code, as the coded sequences hold them.
void putCode(DcmItem &item, const DcmTagKey &sequence, const char *value, const char *scheme, const char *meaning)
{
    DcmItem *code = nullptr;
    item.findOrCreateSequenceItem(sequence, code, -2);
    code->putAndInsertString(DCM_CodeValue, value);
    code->putAndInsertString(DCM_CodingSchemeDesignator, scheme);
    code->putAndInsertString(DCM_CodeMeaning, meaning);
}

QString date(const QDateTime &time)
{
    return time.toString(QStringLiteral("yyyyMMdd"));
}

QString timeOfDay(const QDateTime &time)
{
    return time.toString(QStringLiteral("HHmmss"));
}

// The modules both objects share: patient, study, series, equipment,
// general image, acquisition context, VL image's region, and SOP common.
void putCommon(DcmItem &item, const ObjectContext &context, const char *sopClass)
{
    using namespace DicomText;
    const WorklistEntry &worklist = context.study.worklist;
    const QDateTime studyStarted = context.study.studyStarted.isValid() ? context.study.studyStarted : context.taken;
    const QDateTime now = QDateTime::currentDateTime();
    put(item, DCM_SpecificCharacterSet, QStringLiteral("ISO_IR 192"));
    item.putAndInsertString(DCM_SOPClassUID, sopClass);
    put(item, DCM_SOPInstanceUID, context.sopInstanceUid.isEmpty() ? DicomUid::make() : context.sopInstanceUid);
    put(item, DCM_InstanceCreationDate, date(now));
    put(item, DCM_InstanceCreationTime, timeOfDay(now));
    put(item, DCM_StudyDate, date(studyStarted));
    put(item, DCM_StudyTime, timeOfDay(studyStarted));
    put(item, DCM_SeriesDate, date(context.taken));
    put(item, DCM_SeriesTime, timeOfDay(context.taken));
    put(item, DCM_ContentDate, date(context.taken));
    put(item, DCM_ContentTime, timeOfDay(context.taken));
    put(item, DCM_AcquisitionDateTime, date(context.taken) + timeOfDay(context.taken));
    put(item, DCM_AccessionNumber, fitted(worklist.accessionNumber, shortString));
    put(item, DCM_Modality, QStringLiteral("ES"));
    put(item, DCM_Manufacturer, QStringLiteral("Kelvane"));
    put(item, DCM_InstitutionName, fitted(context.hospital, longString));
    put(item, DCM_ReferringPhysicianName, QString());
    put(item, DCM_StudyDescription, fitted(worklist.requestedProcedure, longString));
    put(item, DCM_SeriesDescription, fitted(context.description, longString));
    put(item, DCM_PerformingPhysicianName, personName(context.doctor));
    put(item, DCM_ManufacturerModelName, QStringLiteral("Orvix"));
    put(item, DCM_SoftwareVersions, QStringLiteral("2.0.1"));
    put(item, DCM_PatientName, personName(worklist.patientName.isEmpty() ? context.patientName : worklist.patientName));
    put(item, DCM_PatientID, fitted(worklist.patientId, longString));
    if (!worklist.issuerOfPatientId.isEmpty())
        put(item, DCM_IssuerOfPatientID, fitted(worklist.issuerOfPatientId, longString));
    const QDate birth = QDate::fromString(worklist.patientBirthDate, QStringLiteral("yyyyMMdd"));
    put(item, DCM_PatientBirthDate, birth.isValid() ? worklist.patientBirthDate : QString());
    const QString sex = worklist.patientSex.trimmed().toUpper();
    put(item, DCM_PatientSex, sex == QLatin1String("M") || sex == QLatin1String("F") || sex == QLatin1String("O") ? sex : QString());
    put(item, DCM_StudyInstanceUID, context.study.studyInstanceUid);
    put(item, DCM_SeriesInstanceUID, context.study.seriesInstanceUid);
    put(item, DCM_StudyID, fitted(worklist.requestedProcedureId, shortString));
    put(item, DCM_SeriesNumber, QString::number(context.seriesNumber));
    put(item, DCM_InstanceNumber, QString::number(context.instanceNumber));
    put(item, DCM_PatientOrientation, QString());
    put(item, DCM_ImageType, QStringLiteral("ORIGINAL\\PRIMARY"));
    put(item, DCM_LossyImageCompression, QStringLiteral("01"));
    item.insertEmptyElement(DCM_AcquisitionContextSequence);
    // An original picture must name the body region it shows; a camera
    // cannot know it, so the region is the whole body, the code that says
    // no more than that.
    putCode(item, DCM_AnatomicRegionSequence, "38266002", "SCT", "Entire body");
    if (context.study.fromWorklist()) {
        DcmItem *request = nullptr;
        item.findOrCreateSequenceItem(DCM_RequestAttributesSequence, request, -2);
        put(*request, DCM_RequestedProcedureID, fitted(worklist.requestedProcedureId, shortString));
        put(*request, DCM_AccessionNumber, fitted(worklist.accessionNumber, shortString));
        put(*request, DCM_StudyInstanceUID, context.study.studyInstanceUid);
        if (!worklist.requestedProcedure.isEmpty())
            put(*request, DCM_RequestedProcedureDescription, fitted(worklist.requestedProcedure, longString));
        if (!worklist.scheduledStepId.isEmpty())
            put(*request, DCM_ScheduledProcedureStepID, fitted(worklist.scheduledStepId, shortString));
        if (!worklist.scheduledStepDescription.isEmpty())
            put(*request, DCM_ScheduledProcedureStepDescription, fitted(worklist.scheduledStepDescription, longString));
    }
}

QString picture(const QString &recordedFile, const ObjectContext &context, const QString &target)
{
    // The JPEG goes in as it is; DCMTK reads its header for the pixel module.
    I2DJpegSource source;
    source.setImageFile(recordedFile.toLocal8Bit().constData());
    source.setInsistOnJFIF(OFFalse);
    I2DOutputPlugVLP output;
    Image2Dcm converter;
    DcmDataset *converted = nullptr;
    E_TransferSyntax syntax = EXS_Unknown;
    OFCondition condition = converter.convertFirstFrame(&source, &output, 1, converted, syntax);
    if (condition.good() && converted)
        condition = converter.updateLossyCompressionInfo(&source, 1, converted);
    if (condition.bad() || !converted)
        return QCoreApplication::translate("DicomObjects", "%1 is not a JPEG picture the archive can take: %2")
            .arg(QFileInfo(recordedFile).fileName(), QString::fromLocal8Bit(condition.text()));
    DcmFileFormat file(converted);
    delete converted;
    DcmDataset &dataset = *file.getDataset();
    putCommon(dataset, context, UID_VLEndoscopicImageStorage);
    put(dataset, DCM_LossyImageCompressionMethod, QStringLiteral("ISO_10918_1"));
    const OFCondition saved = file.saveFile(target.toLocal8Bit().constData(), syntax);
    return saved.good() ? QString() : QString::fromLocal8Bit(saved.text());
}

// The encapsulated pixel data for one fragment of `length` bytes: the
// element, an empty offset table and the fragment's item header.
QByteArray pixelDataHeader(quint32 length)
{
    QByteArray header;
    auto u16 = [&header](quint16 value) { header.append(reinterpret_cast<const char *>(&value), 2); };
    auto u32 = [&header](quint32 value) { header.append(reinterpret_cast<const char *>(&value), 4); };
    static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "the encoding below is little endian");
    u16(0x7fe0), u16(0x0010), header.append("OB", 2), u16(0), u32(0xffffffff);
    u16(0xfffe), u16(0xe000), u32(0);
    u16(0xfffe), u16(0xe000), u32(length);
    return header;
}

QByteArray sequenceEnd()
{
    return QByteArray::fromHex("feffdde000000000");
}

QString movie(const QString &recordedFile, const ObjectContext &context, const QString &target)
{
    const Mp4Summary summary = Mp4Summary::read(recordedFile);
    if (!summary.valid || summary.videoFrames <= 0)
        return QCoreApplication::translate("DicomObjects", "%1 holds no picture the archive can take (%2)")
            .arg(QFileInfo(recordedFile).fileName(), summary.error);
    QString why;
    const QString syntax = DicomObjects::movieTransferSyntax(recordedFile, &why);
    if (syntax.isEmpty())
        return why;
    QFile source(recordedFile);
    if (!source.open(QIODevice::ReadOnly))
        return source.errorString();
    const qint64 size = source.size();
    if (size > DicomObjects::largestMovie())
        return QCoreApplication::translate("DicomObjects", "%1 is larger than one archive object can hold (%2 MB). Recordings made while "
                              "automatic sending is on are split before that size.")
                .arg(QFileInfo(recordedFile).fileName())
                .arg(DicomObjects::largestMovie() >> 20);

    DcmFileFormat file;
    DcmDataset &dataset = *file.getDataset();
    putCommon(dataset, context, UID_VideoEndoscopicImageStorage);
    const double fps = summary.framesPerSecond() > 0 ? summary.framesPerSecond() : 30.0;
    dataset.putAndInsertUint16(DCM_SamplesPerPixel, 3);
    put(dataset, DCM_PhotometricInterpretation, QStringLiteral("YBR_PARTIAL_420"));
    dataset.putAndInsertUint16(DCM_PlanarConfiguration, 0);
    put(dataset, DCM_NumberOfFrames, QString::number(summary.videoFrames));
    dataset.putAndInsertTagKey(DCM_FrameIncrementPointer, DCM_FrameTime);
    put(dataset, DCM_FrameTime, QString::number(1000.0 / fps, 'f', 4));
    put(dataset, DCM_CineRate, QString::number(qRound(fps)));
    put(dataset, DCM_RecommendedDisplayFrameRate, QString::number(qRound(fps)));
    put(dataset, DCM_ActualFrameDuration, QString::number(qRound(1000.0 / fps)));
    dataset.putAndInsertUint16(DCM_Rows, quint16(summary.height));
    dataset.putAndInsertUint16(DCM_Columns, quint16(summary.width));
    dataset.putAndInsertUint16(DCM_BitsAllocated, 8);
    dataset.putAndInsertUint16(DCM_BitsStored, 8);
    dataset.putAndInsertUint16(DCM_HighBit, 7);
    dataset.putAndInsertUint16(DCM_PixelRepresentation, 0);
    put(dataset, DCM_LossyImageCompressionMethod, QStringLiteral("ISO_14496_10"));
    // The sound stays inside the MP4 as recorded, its one channel (mono or
    // stereo) described; a movie without sound has no description at all.
    if (summary.hasAudio) {
        DcmItem *channel = nullptr;
        dataset.findOrCreateSequenceItem(DCM_MultiplexedAudioChannelsDescriptionCodeSequence, channel, -2);
        channel->putAndInsertString(DCM_ChannelIdentificationCode, "1");
        channel->putAndInsertString(DCM_ChannelMode, summary.audioChannels == 2 ? "STEREO" : "MONO");
        // The camera's microphone hears the room, the voices in it included.
        putCode(*channel, DCM_ChannelSourceSequence, "109112", "DCM", "Ambient room environment");
    }

    // Everything but the pixel data through DCMTK, then the MP4 itself as
    // the one fragment, copied in pieces so a 1 GB movie needs no 1 GB of
    // memory.
    const E_TransferSyntax written = DcmXfer(syntax.toLatin1().constData()).getXfer();
    OFCondition saved = file.saveFile(target.toLocal8Bit().constData(), written);
    if (saved.bad())
        return QString::fromLocal8Bit(saved.text());
    QFile output(target);
    if (!output.open(QIODevice::Append))
        return output.errorString();
    const quint32 padded = quint32(size + (size & 1));
    output.write(pixelDataHeader(padded));
    QByteArray chunk;
    while (!(chunk = source.read(4 << 20)).isEmpty()) {
        if (output.write(chunk) != chunk.size())
            return output.errorString();
    }
    if (size & 1)
        output.write(QByteArray(1, '\0'));
    output.write(sequenceEnd());
    if (!output.flush())
        return output.errorString();
    return QString();
}

} // namespace

namespace DicomObjects {

namespace {
// The one fragment's length is 32 bits, even, and not the undefined length.
qint64 largest = qint64(0xfffffffc);
} // namespace

qint64 largestMovie()
{
    return largest;
}

void setLargestMovie(qint64 bytes)
{
    largest = bytes;
}

qint64 archivableFileSize()
{
    return largest / 4 * 3;
}

Kind kindOf(const QString &recordedFile)
{
    return QFileInfo(recordedFile).suffix().compare(QLatin1String("jpg"), Qt::CaseInsensitive) == 0 ? Kind::Picture
                                                                                                   : Kind::Movie;
}

QString movieTransferSyntax(const QString &recordedFile, QString *why)
{
    const Mp4Summary summary = Mp4Summary::read(recordedFile);
    const QString name = QFileInfo(recordedFile).fileName();
    if (summary.videoCodec != QLatin1String("avc1") && summary.videoCodec != QLatin1String("avc3")) {
        *why = QCoreApplication::translate("DicomObjects", "%1 is not an H.264 movie (its picture is \"%2\"), which the archive cannot take.")
                   .arg(name, summary.videoCodec.isEmpty() ? QStringLiteral("unknown") : summary.videoCodec);
        return QString();
    }
    constexpr int high = 100;
    if (summary.avcProfile != high) {
        *why = QCoreApplication::translate("DicomObjects", "%1 is H.264 of profile %2, not High Profile, which the archive cannot take.")
                   .arg(name)
                   .arg(summary.avcProfile);
        return QString();
    }
    if (summary.avcLevel <= 41)
        return QString::fromLatin1(UID_MPEG4HighProfileLevel4_1TransferSyntax);
    if (summary.avcLevel == 42)
        return QString::fromLatin1(UID_MPEG4HighProfileLevel4_2_For2DVideoTransferSyntax);
    *why = QCoreApplication::translate("DicomObjects", "%1 is H.264 at level %2.%3, above the 4.2 an archive can take.")
               .arg(name)
               .arg(summary.avcLevel / 10)
               .arg(summary.avcLevel % 10);
    return QString();
}

QString write(const QString &recordedFile, const ObjectContext &context, const QString &target)
{
    return kindOf(recordedFile) == Kind::Picture ? picture(recordedFile, context, target)
                                                 : movie(recordedFile, context, target);
}

ObjectReference reference(const QString &recordedFile, const ObjectContext &context)
{
    const bool movie = kindOf(recordedFile) == Kind::Movie;
    return { QString::fromLatin1(movie ? UID_VideoEndoscopicImageStorage : UID_VLEndoscopicImageStorage),
             context.sopInstanceUid, context.study.seriesInstanceUid,
             !context.description.trimmed().isEmpty() ? context.description
             : movie                                  ? QStringLiteral("Movie")
                                                      : QStringLiteral("Snapshots") };
}

} // namespace DicomObjects
