// SPDX-License-Identifier: MIT
#include "host/Settings.h"
#include "media/MediaReader.h"
#include "sound/AudioReader.h"
#include "sound/ClickMedia.h"
#include "sound/SoundRig.h"
#include "sound/StereoMixer.h"
#include "support/TestRegistry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <random>

using ClickMedia::Options;

namespace
{

QStringList WordsOf(const QString& text)
{
    return text.split(QLatin1Char(' '));
}

float Loudest(const std::vector<float>& stereo, size_t side)
{
    float loudest = 0.0f;
    for (size_t i = side; i < stereo.size(); i += 2)
        loudest = std::max(loudest, std::abs(stereo[i]));
    return loudest;
}

} // namespace

class tst_AudioFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { Settings::loopType = NoLoop; }
    void ChannelLayoutsBecomeStereo_data();
    void ChannelLayoutsBecomeStereo();
    void ChannelsWithoutNamesAreLeftAndRight();
    void OddRatesKeepTheirPlaces_data();
    void OddRatesKeepTheirPlaces();
    void AMovieWithoutSoundHasNoSegment();
    void FilesThatCannotBeHeardSayWhy_data();
    void FilesThatCannotBeHeardSayWhy();
    void ACutFileIsHeardAsFarAsItGoes_data();
    void ACutFileIsHeardAsFarAsItGoes();
    void DamageIsSilenceAndOneLine();
    void SoundShorterOrLongerThanThePicture_data();
    void SoundShorterOrLongerThanThePicture();
    void ACancelledReaderComesBackAtOnce();

private:
    QString Patched(const QString& path, const QByteArray& from, const QByteArray& to);

    QTemporaryDir mFolder;
};

QString tst_AudioFaults::Patched(const QString& path, const QByteArray& from, const QByteArray& to)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray bytes = file.readAll();
    const auto at = bytes.lastIndexOf(from);
    if (at < 0 || from.size() != to.size())
        return {};
    bytes.replace(at, from.size(), to);
    QFile patched(mFolder.filePath(QStringLiteral("patched-") + path.section(QLatin1Char('-'), -1)));
    if (!patched.open(QIODevice::WriteOnly))
        return {};
    patched.write(bytes);
    return patched.fileName();
}

void tst_AudioFaults::ChannelLayoutsBecomeStereo_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QString>("channels");
    QTest::addColumn<float>("left");
    QTest::addColumn<float>("right");
    // The tone of 0.1 is in the channels named; clicks are taken out by the level alone.
    QTest::newRow("mono") << "mono"
                          << "FC" << 1.0f << 1.0f;
    QTest::newRow("stereo, left") << "stereo"
                                  << "FL" << 1.0f << 0.0f;
    QTest::newRow("stereo, right") << "stereo"
                                   << "FR" << 0.0f << 1.0f;
    QTest::newRow("5.1, left") << "5.1"
                               << "FL" << 1.0f << 0.0f;
    QTest::newRow("5.1, centre") << "5.1"
                                 << "FC" << 0.7071f << 0.7071f;
    QTest::newRow("5.1, behind right") << "5.1"
                                       << "BR" << 0.0f << 0.7071f;
    QTest::newRow("7.1, side left") << "7.1"
                                    << "SL" << 0.7071f << 0.0f;
}

void tst_AudioFaults::ChannelLayoutsBecomeStereo()
{
    QFETCH(QString, layout);
    QFETCH(QString, channels);
    QFETCH(float, left);
    QFETCH(float, right);
    Options options;
    options.seconds = options.audioSeconds = 2.0;
    options.audioEncoder = WordsOf(QStringLiteral("-c:a flac -af pan=%1|%2=c0").arg(layout, channels));
    const std::unique_ptr<AudioSource> source =
        ClickMedia::Open(ClickMedia::Movie(QStringLiteral("layout.mkv"), options), 48000);
    QVERIFY(source);
    const std::vector<float> stereo = ClickMedia::ReadThrough(source.get(), 0, 96000);
    QVERIFY2(std::abs(Loudest(stereo, 0) - 0.8f * left) < 0.01f,
             qPrintable(QString::number(double(Loudest(stereo, 0)))));
    QVERIFY2(std::abs(Loudest(stereo, 1) - 0.8f * right) < 0.01f,
             qPrintable(QString::number(double(Loudest(stereo, 1)))));
    QVERIFY(source->Problem().isEmpty());
}

void tst_AudioFaults::ChannelsWithoutNamesAreLeftAndRight()
{
    StereoMixer mixer;
    // From one layout to the next, as in a broadcast.
    for (const int channels : {10, 2, 24, 1, 10})
    {
        const LibavPointer<AVFrame> frame(av_frame_alloc());
        frame->format = AV_SAMPLE_FMT_FLTP;
        frame->sample_rate = 48000;
        frame->nb_samples = 100;
        frame->ch_layout.order = AV_CHANNEL_ORDER_UNSPEC;
        frame->ch_layout.nb_channels = channels;
        QVERIFY(av_frame_get_buffer(frame.get(), 0) >= 0);
        for (int channel = 0; channel < channels; ++channel)
        {
            float* const samples = reinterpret_cast<float*>(frame->extended_data[channel]);
            std::fill(samples, samples + 100, 0.125f * float(channel + 1));
        }
        std::vector<float> stereo;
        QVERIFY2(mixer.Mix(*frame, &stereo), qPrintable(QString::number(channels)));
        QCOMPARE(stereo.size(), size_t(200));
        QCOMPARE(stereo[100], 0.125f);
        QCOMPARE(stereo[101], channels > 1 ? 0.25f : 0.125f);
    }
}

void tst_AudioFaults::OddRatesKeepTheirPlaces_data()
{
    QTest::addColumn<int>("sampleRate");
    QTest::addColumn<int>("rate");
    for (const int sampleRate : {8000, 11025, 12345, 22050, 32000, 47999, 96000, 192000})
        for (const int rate : {44100, 48000, 96000})
            QTest::addRow("%d to %d", sampleRate, rate) << sampleRate << rate;
}

void tst_AudioFaults::OddRatesKeepTheirPlaces()
{
    QFETCH(int, sampleRate);
    QFETCH(int, rate);
    Options options;
    options.sampleRate = sampleRate;
    options.seconds = options.audioSeconds = 6.0;
    const QString path = ClickMedia::Movie(QStringLiteral("odd%1.mov").arg(sampleRate), options);
    const std::unique_ptr<AudioSource> source = ClickMedia::Open(path, rate);
    QVERIFY(source);
    const std::vector<float> stereo = ClickMedia::ReadThrough(source.get(), 0, 5 * rate);
    const std::vector<double> clicks = ClickMedia::ClicksIn(stereo, rate);
    QVERIFY(clicks.size() >= 4);
    for (const double click : clicks)
    {
        const double wanted = std::round(click / rate) * rate;
        // Twice a frame of the lower rate.
        QVERIFY2(std::abs(click - wanted) < 2.0 * std::max(1.0, double(rate) / sampleRate),
                 qPrintable(QString::number(click - wanted)));
    }
    std::mt19937 random(3);
    for (int turn = 0; turn < 20; ++turn)
    {
        const int first = std::uniform_int_distribution<int>(0, 4 * rate)(random);
        const std::vector<float> piece = ClickMedia::ReadThrough(source.get(), first, 1000);
        float largest = 0.0f;
        for (size_t i = 0; i < piece.size(); ++i)
            largest = std::max(largest, std::abs(piece[i] - stereo[2 * size_t(first) + i]));
        QVERIFY2(largest < 1e-5f, qPrintable(QString::number(double(largest))));
    }
}

void tst_AudioFaults::AMovieWithoutSoundHasNoSegment()
{
    Options options;
    options.seconds = 1.0;
    options.audioEncoder = WordsOf(QStringLiteral("-an"));
    const QString path = ClickMedia::Movie(QStringLiteral("mute.mov"), options);
    const std::unique_ptr<MediaReader> movie = OpenMedia(path, nullptr);
    QVERIFY(movie);
    QVERIFY(AudioSegmentsOf(movie->Info()).empty());
    QString error;
    QVERIFY(!ClickMedia::Open(path, 48000, &error));
    QVERIFY2(error.contains(path) && error.contains(QLatin1String("no sound")), qPrintable(error));
}

void tst_AudioFaults::FilesThatCannotBeHeardSayWhy_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("word");
    Options options;
    options.seconds = options.audioSeconds = 2.0;
    const QString movie = ClickMedia::Movie(QStringLiteral("codec.mov"), options);
    QTest::newRow("no decoder in mov") << Patched(movie, "sowt", "zzzz") << "no decoder";
    options.audioEncoder = WordsOf(QStringLiteral("-c:a flac"));
    const QString matroska = ClickMedia::Movie(QStringLiteral("codec.mkv"), options);
    QTest::newRow("no decoder in mkv") << Patched(matroska, "A_FLAC", "A_ZZZZ") << "no decoder";
    QTest::newRow("no file") << "/nowhere/at/all.mov"
                             << "No such file";
    QTest::newRow("no movie") << QCoreApplication::applicationFilePath() << "can't be opened";
}

void tst_AudioFaults::FilesThatCannotBeHeardSayWhy()
{
    QFETCH(QString, path);
    QFETCH(QString, word);
    QVERIFY(!path.isEmpty());
    QString error;
    QVERIFY(!AudioReader::Open({path, 0, 0, 1000000, 0}, 48000, CancelToken(), &error));
    QVERIFY2(error.contains(path), qPrintable(error));
    QVERIFY2(error.contains(word), qPrintable(error));
    QVERIFY(!AudioReader::Open({path, 0, 0, 1000000, 0}, 48000, CancelToken(), nullptr));

    // In playback: one line, silence, and the picture goes on.
    SoundRig::Options options;
    options.segments = {{path, 0, 0, 100000000, 0}};
    options.opener = [](const AudioSegment& segment, int rate, QString* reason)
    { return AudioReader::Open(segment, rate, CancelToken(), reason); };
    SoundRig rig(options);
    for (int turn = 0; turn < 3; ++turn)
    {
        rig.playback->SeekFrame(1);
        rig.playback->Play(1);
        const std::vector<float> heard = rig.Run(96000);
        QVERIFY(std::all_of(heard.begin(), heard.end(), [](float sample) { return sample == 0.0f; }));
        QVERIFY(rig.playback->CurrentFrame() >= 47);
        rig.playback->Pause();
    }
    QCOMPARE(rig.warnings.texts, QStringList{error});
}

void tst_AudioFaults::ACutFileIsHeardAsFarAsItGoes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("encoder");
    QTest::newRow("mkv") << "cut.mkv"
                         << "-c:a flac";
    QTest::newRow("ts") << "cut.ts"
                        << "-c:a aac";
    QTest::newRow("mov") << "cut.mov"
                         << "-c:a pcm_s16le -movflags +faststart";
    QTest::newRow("mp4") << "cut.mp4"
                         << "-c:a aac -movflags +faststart";
}

void tst_AudioFaults::ACutFileIsHeardAsFarAsItGoes()
{
    QFETCH(QString, name);
    QFETCH(QString, encoder);
    Options options;
    options.audioEncoder = WordsOf(encoder);
    const QString whole = ClickMedia::Movie(name, options);
    QFile file(whole);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QFile cut(mFolder.filePath(name));
    QVERIFY(cut.open(QIODevice::WriteOnly));
    cut.write(file.read(file.size() * 6 / 10));
    cut.close();
    AudioSegment segment{whole, 0, 0, 12000000, 0};
    const std::unique_ptr<AudioReader> full = AudioReader::Open(segment, 48000, CancelToken(), nullptr);
    segment.path = cut.fileName();
    const std::unique_ptr<AudioReader> part = AudioReader::Open(segment, 48000, CancelToken(), nullptr);
    QVERIFY(full && part);
    // A transport stream's clock does not begin at 0.
    const std::vector<float> all = ClickMedia::ReadThrough(full.get(), 0, 14 * 48000);
    const std::vector<float> some = ClickMedia::ReadThrough(part.get(), 0, 14 * 48000);
    int same = 0;
    while (same < int(all.size()) && std::abs(all[size_t(same)] - some[size_t(same)]) < 1e-4f)
        ++same;
    QVERIFY2(same > 2 * 4 * 48000, qPrintable(QString::number(same)));
    QVERIFY(std::all_of(some.end() - 2 * 4 * 48000, some.end(), [](float sample) { return sample == 0.0f; }));
    // Places behind the end are silent at once, and those before are still there.
    std::vector<float> piece = ClickMedia::ReadThrough(part.get(), 11 * 48000, 4800);
    QVERIFY(std::all_of(piece.begin(), piece.end(), [](float sample) { return sample == 0.0f; }));
    piece = ClickMedia::ReadThrough(part.get(), 2 * 48000, 4800);
    QVERIFY(std::any_of(piece.begin(), piece.end(), [](float sample) { return sample != 0.0f; }));
}

void tst_AudioFaults::DamageIsSilenceAndOneLine()
{
    Options options;
    options.audioEncoder = WordsOf(QStringLiteral("-c:a aac -b:a 192k"));
    const QString whole = ClickMedia::Movie(QStringLiteral("hurt.mp4"), options);
    QFile file(whole);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArray bytes = file.readAll();
    std::mt19937 random(11);
    for (int turn = 0; turn < 400; ++turn)
        bytes[int(random() % unsigned(bytes.size() / 2)) + bytes.size() / 8] = char(random());
    QFile hurt(mFolder.filePath(QStringLiteral("hurt.mp4")));
    QVERIFY(hurt.open(QIODevice::WriteOnly));
    hurt.write(bytes);
    hurt.close();
    SoundRig::Options rigOptions;
    rigOptions.segments = {{hurt.fileName(), 0, 0, 12000000, 0}};
    rigOptions.opener = [](const AudioSegment& segment, int rate, QString* reason)
    { return AudioReader::Open(segment, rate, CancelToken(), reason); };
    SoundRig rig(rigOptions);
    rig.playback->Play(1);
    const std::vector<float> heard = rig.Run(11 * 48000);
    QVERIFY(std::all_of(heard.begin(), heard.end(), [](float sample) { return std::abs(sample) <= 1.0f; }));
    // The last click, behind the damage, is still in its place.
    const std::vector<double> clicks = ClickMedia::ClicksIn(heard, 48000);
    QVERIFY(!clicks.empty());
    const double place =
        clicks.back() - double(heard.size() / 2) + double(rig.player->Played()) * 48000 / 1000000;
    QVERIFY2(std::abs(place - 48000 * std::round(place / 48000)) < 10.0, qPrintable(QString::number(place)));
    QCOMPARE(rig.warnings.texts.size(), 1);
    QVERIFY2(rig.warnings.texts.first().contains(hurt.fileName()), qPrintable(rig.warnings.texts.first()));
}

void tst_AudioFaults::SoundShorterOrLongerThanThePicture_data()
{
    QTest::addColumn<double>("audioSeconds");
    QTest::newRow("shorter") << 2.0;
    QTest::newRow("longer") << 9.0;
}

void tst_AudioFaults::SoundShorterOrLongerThanThePicture()
{
    QFETCH(double, audioSeconds);
    Options options;
    options.seconds = 4.0;
    options.audioSeconds = audioSeconds;
    const QString path = ClickMedia::Movie(QStringLiteral("length.mov"), options);
    const std::unique_ptr<MediaReader> movie = OpenMedia(path, nullptr);
    QVERIFY(movie);
    SoundRig::Options rigOptions;
    rigOptions.frameCount = movie->Info().frameCount;
    rigOptions.segments = AudioSegmentsOf(movie->Info());
    rigOptions.latency = 0;
    rigOptions.opener = [](const AudioSegment& segment, int rate, QString* reason)
    { return AudioReader::Open(segment, rate, CancelToken(), reason); };
    SoundRig rig(rigOptions);
    QCOMPARE(rigOptions.frameCount, 96);
    rig.playback->Play(1);
    const std::vector<float> heard = rig.Run(6 * 48000);
    // The picture goes to its end and stops there, and so does the sound.
    QVERIFY(!rig.playback->IsPlaying());
    QCOMPARE(rig.playback->CurrentFrame(), 96);
    const auto isSilent = [&](double from, double to)
    {
        return std::all_of(heard.begin() + 2 * int(from * 48000), heard.begin() + 2 * int(to * 48000),
                           [](float sample) { return sample == 0.0f; });
    };
    QVERIFY(!isSilent(1.0, 1.9));
    QCOMPARE(isSilent(2.1, 3.9), audioSeconds < 4.0);
    QVERIFY(isSilent(4.1, 6.0));
    QVERIFY(rig.warnings.texts.isEmpty());
}

void tst_AudioFaults::ACancelledReaderComesBackAtOnce()
{
    Options options;
    const QString path = ClickMedia::Movie(QStringLiteral("pcm.mov"), options);
    CancelToken cancel;
    const std::unique_ptr<AudioReader> reader =
        AudioReader::Open({path, 0, 0, 12000000, 0}, 48000, cancel, nullptr);
    QVERIFY(reader);
    cancel.Cancel();
    const std::vector<float> stereo = ClickMedia::ReadThrough(reader.get(), 48000, 48000);
    QVERIFY(std::all_of(stereo.begin(), stereo.end(), [](float sample) { return sample == 0.0f; }));
    QString error;
    QVERIFY(!AudioReader::Open({path, 0, 0, 12000000, 0}, 48000, cancel, &error));
    QVERIFY(!error.isEmpty());
}

static const TestRegistration<tst_AudioFaults> AudioFaultsRegistration;

#include "tst_AudioFaults.moc"
