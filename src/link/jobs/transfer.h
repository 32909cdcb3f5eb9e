#pragma once

#include "link/jobs/job_board.h"
#include "link/transport/ISoundload.h"
#include "link/transport/bit_loop.h"
#include "store/CVRec.h"

#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace link_jobs {

enum class Job_Mode { read_all = 0, write_all = 1, query = 2, write_set = 3 };

/// What a job is to do. It works on copies: nothing of it is shared with a window.
struct Order {
    Job_Mode mode = Job_Mode::query;
    bool susi = false; ///< else the programming track
    link_types::Link_Values values;
    std::vector<store::CVRec> cvs; ///< of the set, in list order; for writing
};

/// CVs by their number, from 1; nothing: not read, or not to be written.
using Cv_Buffer = std::array<std::optional<std::uint8_t>, 1025>;

/// What has become of a job.
struct Outcome {
    enum class End { not_connected, unsupported, done, failed, cancelled };
    End end = End::not_connected;
    link_types::Link_Values values;
    std::optional<serial::Error> trouble; ///< what the port refused last
    int refused = 0;                      ///< CVs of the set that the decoder did not take
    int not_admitted = 0;                 ///< CVs of the set that do not go into this decoder
    bool begun = false;                   ///< something was written into the decoder
    Cv_Buffer read;                       ///< under the numbers of a set
    int last_read = 0;                    ///< the CV of the decoder that was read last
    /// More answers came than were asked for: what was read is shifted somewhere, and nothing of it
    /// is given.
    bool out_of_step = false;
};

/// One job with a decoder, from finding it to letting it go. Runs in the thread that calls it.
class Transfer {
public:
    Transfer(Order order, link_serial::frm_Soundload_cls& host, Job_Board& board,
             link_transport::Bit_Loop& loop = link_transport::real_bit_loop());
    ~Transfer();

    Outcome run();

private:
    bool connect();
    void disconnect();
    void run_body();
    void show_decoder();
    int ask_capacity(); ///< class 0..7
    void query();
    void load_set();
    void load_cv(const store::CVRec& cv);
    void read_all();
    void write_all();
    void end_all(bool failed);
    void show_cv(int cv, int last);
    void show_progress(int done, int all);
    void say(const QString& Label1);
    bool aborted() const { return host_.abort().raised(); }
    void log(const QString& text) { host_.log(text); }

    Order order_;
    link_serial::frm_Soundload_cls& host_;
    Job_Board& board_;
    link_transport::Bit_Loop& loop_;
    link_types::Link_Values values_;
    std::unique_ptr<link_transport::ISoundload> transport_;
    timing::Milliseconds body_start_{0};
    Outcome outcome_;
};

/// The values to be written of a set: what it holds on pages 0:0 to 0:3, the last row of a number
/// counting, and zeros for CV31 and CV32.
Cv_Buffer values_to_write(const std::vector<store::CVRec>& cvs);
/// The CVs of a set that hold what was read; those of 257..512 on the page that CV31 and CV32 of the
/// same reading choose.
std::vector<store::CVRec> records_read(const Cv_Buffer& read, int cv_space);

} // namespace link_jobs
