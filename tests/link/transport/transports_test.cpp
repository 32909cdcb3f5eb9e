#include "link/made_up_decoder.h"
#include "link/transport/cls_QD_Schiene_Soundload.h"
#include "link/transport/cls_SUSI_Soundload.h"
#include "link/types/mod_decodertypen.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace made_up;
using link_transport::cls_QD_Schiene_Soundload;
using link_transport::cls_SUSI_Soundload;
using link_types::no_value;
using testing::ElementsAre;

namespace {

struct On_Track : testing::Test, Track {
    link_serial::frm_Soundload_cls host{control, time, abort, log};
    cls_QD_Schiene_Soundload track{host, values, loop};

    void connect() {
        ASSERT_TRUE(track.Connect());
        packets.clear();
        log.lines.clear();
    }
};

} // namespace

TEST_F(On_Track, the_first_link_switches_measures_and_asks) {
    ASSERT_TRUE(track.Connect());
    const QStringList begins{{},
                             {},
                             QStringLiteral("Öffne Port 1"),
                             QStringLiteral("KORLI suchen"),
                             QStringLiteral("KORLI gefunden"),
                             QStringLiteral("Timing messen. Soll=50"),
                             QStringLiteral("  Try=0 : Counter=100000 : Zeit=40"),
                             QStringLiteral("  Try=1 : Counter=125000 : Zeit=50"),
                             QStringLiteral("Timing ok = Wahr"),
                             QStringLiteral("Timing    = 125000"),
                             QStringLiteral("Preamble gesendet. Anz.=10 Zeit=42ms"),
                             QStringLiteral("Read CV8")};
    EXPECT_EQ(log.lines.first(begins.size()), begins);
    EXPECT_EQ(values.TimingCounter, 125000);
    EXPECT_TRUE(values.BasuModeActive);
    EXPECT_EQ(values.DecoderTypeCode, 201);
    EXPECT_EQ(values.decoder, (link_types::Decoder_Type{QStringLiteral("Decoder 201"),
                                                        link_types::Family_Group::cv256, 256}));
    track.Disconnect();
    EXPECT_FALSE(control.is_open());

    log.lines.clear();
    ASSERT_TRUE(track.Connect()); // what is known is not asked for again
    EXPECT_EQ(log.lines.at(3).first(8), QStringLiteral("Preamble"));
}

TEST_F(On_Track, every_packet_goes_byte_for_byte) {
    protocol = 0;
    connect();
    const auto sends = [&](const std::function<void()>& call, const std::string& bytes) {
        packets.clear();
        call();
        EXPECT_EQ(sent().substr(0, bytes.size()), bytes);
    };
    sends([&] { track.ReadCV(1); }, "010000 FF FF FF FF FF FF FF ");
    sends([&] { track.ReadCV(1024); }, "0103FF ");
    sends([&] { EXPECT_TRUE(track.WriteCV(29, 6)); }, "02AA001C06 ");
    sends([&] { EXPECT_TRUE(track.WriteCV(8, 8)); }, "");
    EXPECT_TRUE(packets.empty());
    sends([&] { EXPECT_TRUE(track.SetCVStart()); }, "0908000004 ");
    sends([&] { EXPECT_TRUE(track.WriteSetCV(257, 3)); }, "09050003F6 ");
    sends([&] { EXPECT_TRUE(track.WriteSetCV(3, 40)); }, "09040228CF ");
    sends([&] { EXPECT_TRUE(track.SetCVEnd()); }, "090C00009A ");
    sends([&] { EXPECT_EQ(track.GetSetCVCapacity(), 1); }, "091000006B FF ");
    sends([&] { EXPECT_TRUE(track.WriteCV(29, 6)); }, "06AA001C7C06 "); // CRC mode from then on
    cvs[3] = 141;
    EXPECT_EQ(track.ReadCV(3), 141);
}

TEST_F(On_Track, a_reading_without_answer_recovers_and_ends) {
    connect();
    silent_from = 6; // the answer to bit 5, and all that come later
    answers = 0;
    EXPECT_EQ(track.ReadCV(3), no_value);
    EXPECT_EQ(log.lines.filter(QStringLiteral("Read CV3")).size(), 5);
    EXPECT_EQ(log.lines.filter(QStringLiteral("Timeout Buffer=0")).size(), 5);
    EXPECT_EQ(log.lines.last(), QStringLiteral("Read CV Timeout"));
    EXPECT_EQ(
        sent(), "010002 FF FF FF FF FF 00 00 00 00 00 00 00 00 " + [] {
            std::string rest;
            for (int i = 0; i < 4; ++i) rest += "010002 00 00 00 00 00 00 00 00 ";
            return rest;
        }());
    EXPECT_FALSE(track.WriteCV(3, 1));
    EXPECT_EQ(log.lines.filter(QStringLiteral("Write CV3=1")).size(), 5);
}

TEST(Over_Susi, frames_and_answers_go_byte_for_byte) {
    Track at; // its port and time; the bytes are judged here
    Bytes frame;
    Bytes answer;
    std::vector<Bytes> frames;
    at.control.ports[1].on_byte = [&](Byte byte) {
        frame.push_back(byte);
        const bool text = frame.front() == 'S';
        const std::size_t length = text                                ? 7
                                   : frame.size() > 5 && frame[5] == 2 ? 13
                                   : frame.size() > 5 && frame[5] == 7 ? 10
                                                                       : 12;
        if (frame.size() < length) return;
        frames.push_back(std::exchange(frame, {}));
        at.control.answer(text ? Bytes{'O', 'K', '\r'} : answer, Milliseconds(3));
    };
    link_serial::frm_Soundload_cls host(at.control, at.time, at.abort, at.log);
    cls_SUSI_Soundload susi(host, at.values);
    answer = {0x06, 0x05, 0x3F};
    EXPECT_FALSE(susi.Connect()) << "CV8 is 5";
    frames.clear();
    EXPECT_EQ(susi.ReadCV(1), 5);
    EXPECT_EQ(frames.back(), (Bytes{0, 0, 0, 2, 1, 1, 0, 0, 0, 0, 0, 0x37}));
    EXPECT_EQ(at.log.lines.last(), QStringLiteral("Read CV1 Bytes Read: 3 Data: 6 5 63 "));
    answer = {0x06, 0x05, 0x3E};
    frames.clear();
    EXPECT_EQ(susi.ReadCV(1), no_value);
    EXPECT_EQ(frames.size(), 6U);
    answer = {0x06};
    EXPECT_TRUE(susi.WriteCV(29, 6));
    EXPECT_EQ(frames.back(), (Bytes{0, 0, 0, 0, 1, 2, 0, 0, 0, 0, 0x1C, 6, 0x06}));
    frames.clear();
    EXPECT_TRUE(susi.WriteCV(7, 1));
    EXPECT_TRUE(frames.empty());
    answer = {0x15};
    EXPECT_FALSE(susi.WriteCV(29, 6));
    EXPECT_EQ(frames.size(), 11U);
    susi.Disconnect();
    EXPECT_EQ(frames.back().at(5), 7);
}

// A letter a code, from 128: `-` has no name; `1` and `2` are the family groups of 256 and 1024 CVs;
// `3` has 1023 of them; `k` keeps the group that was.
TEST(Decoder_Types, every_code_has_its_row) {
    using link_types::Family_Group;
    const std::string upper = "--2-222222----2---------2-------"  // 128
                              "2----23----1---2222-22211221122-"  // 160
                              "2211122111----112221112222111221"  // 192
                              "2212122211111k1-kk1222222222222-"; // 224
    for (int code = 0; code < 256; ++code)
        for (const auto before : {Family_Group::unknown, Family_Group::cv256}) {
            SCOPED_TRACE(code);
            const char row = code < 128 ? 'q' : upper.at(static_cast<std::size_t>(code) - 128);
            link_types::Link_Values values;
            values.DecoderTypeCode = static_cast<std::uint8_t>(code);
            values.decoder = {{}, before, 256};
            link_types::look_up_decoder_type(values);
            const auto& [name, group, cv_space] = values.decoder;
            EXPECT_EQ(group, row == 'q'   ? Family_Group::sound
                             : row == 'k' ? before
                             : row == '1' ? Family_Group::cv256
                                          : Family_Group::cv1024);
            EXPECT_EQ(cv_space, row == '1' ? 256 : row == '3' ? 1023 : 1024);
            EXPECT_EQ(name, code == 0                 ? QStringLiteral("QR-Decoder")
                            : code > 10 && code < 128 ? QStringLiteral("QRxxx")
                            : row == '-'              ? QStringLiteral("Decoder")
                                                      : QStringLiteral("Decoder %1").arg(code));
        }
}
