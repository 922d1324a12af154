"""Rows about writing: the same samples exported through the plug-in and by others.

All programs get the same samples in planes of 65536 frames, as the host hands them over, from a few blocks
that they hold in memory and use again and again. They write to a new file each time, which is closed when
the clock stops and synced by none of them (tarvo convert does sync; it means nothing to a memory file
system). ffmpeg and lame run as whole processes and read interleaved samples from a file.

The figure is processor time, user and system, since another program's load counts less in it than in time
on the wall: the ratio of the least of all rounds. Behind it stand the median of the rounds' ratios, and
the ratio of the least times on the wall. Before a row is measured each program's file is checked: lossless
ones hold exactly the samples, lossy ones are as long as they should be, and the project's has the packets
of libav's, the last ones aside.
"""

import hashlib
import os
import re
import statistics
import subprocess
from dataclasses import dataclass, field

from measuring import ffmpeg, line_and_whole, whole_run

BLOCK_FRAMES = 65536
SOURCE_BLOCKS = 4
RAW = {2: "s16le", 3: "s24le", 4: "f32le"}
LAST_PACKETS = 4  # where the end of the audio and the encoders' delays are seen


@dataclass
class Export:
    name: str
    extension: str
    width: int
    muxer: str
    encoder: str
    channels: int = 2
    rate: int = 44100
    format: str = "lpcm"  # the host's name for it
    mode: str = "-"
    bit_rate: int = 0
    sndfile: str = ""  # container; empty: not written by it
    is_lossy: bool = False
    rivals: tuple = ("libsndfile", "libav", "ffmpeg")
    bars: dict = field(default_factory=dict)  # of a rival, or of the fastest


def lossy(name, extension, muxer, encoder, form, mode, bit_rate, bars, **more):
    return Export(name, extension, 2, muxer, encoder, format=form, mode=mode, bit_rate=bit_rate, is_lossy=True,
                  rivals=("libav", "ffmpeg"), bars=bars, **more)


EXPORTS = [
    Export("WAV 16-bit", "wav", 2, "wav", "pcm_s16le", sndfile="wav", bars={"fastest": 1.10}),
    Export("WAV float", "wav", 4, "wav", "pcm_f32le", sndfile="wav", bars={"fastest": 1.10}),
    Export("WAV 24-bit", "wav", 3, "wav", "pcm_s24le", sndfile="wav", bars={"libsndfile": 0.60}),
    Export("WAV 24-bit 6 channels", "wav", 3, "wav", "pcm_s24le", channels=6, rate=48000, sndfile="wav",
           bars={"libsndfile": 0.70}),
    Export("AIFF 16-bit", "aiff", 2, "aiff", "pcm_s16be", sndfile="aiff", bars={"libsndfile": 0.75}),
    Export("CAF 16-bit", "caf", 2, "caf", "pcm_s16le", sndfile="caf", bars={"libsndfile": 0.95}),
    Export("FLAC 16-bit", "flac", 2, "flac", "flac", format="flac", sndfile="flac", bars={"libav": 1.03}),
    Export("FLAC 24-bit", "flac", 3, "flac", "flac", format="flac", sndfile="flac", bars={"libav": 1.03}),
    Export("ALAC 16-bit", "m4a", 2, "ipod", "alac", format="alac", rivals=("libav", "ffmpeg"), bars={"libav": 1.03}),
    lossy("AAC average", "m4a", "ipod", "aac", "aac", "abr", 128000, {"libav": 1.03}),
    lossy("MP3 constant", "mp3", "mp3", "libmp3lame", "mp3", "cbr", 128000, {"libav": 1.03}),
    lossy("AC-3", "ac3", "ac3", "ac3", "ac-3", "cbr", 192000, {"libav": 1.03}, rate=48000),
]


class Source:
    """A few blocks of interleaved samples in a file."""

    def __init__(self, inputs, export):
        self.path = os.path.join(inputs.folder, f"source-{export.channels}-{export.rate}-{export.width}.raw")
        self.frame_bytes = export.channels * export.width
        if not os.path.exists(self.path):
            made = self.path + ".whole"
            ffmpeg("-i", inputs.source(export.channels, export.rate), "-f", RAW[export.width], made)
            with open(made, "rb") as file, open(self.path, "wb") as kept:
                kept.write(file.read(SOURCE_BLOCKS * BLOCK_FRAMES * self.frame_bytes))
            os.remove(made)

    def digest(self, frames):
        """Of that many frames, as the programs repeat them."""
        with open(self.path, "rb") as file:
            block = file.read()
        digest, left = hashlib.md5(), frames * self.frame_bytes
        while left > 0:
            digest.update(block[:left])
            left -= len(block)
        return digest.hexdigest()


def answer_of(path, *options):
    """What ffmpeg says of a file, as text."""
    command = ["ffmpeg", "-v", "error", "-nostdin", "-i", path, *options, "-"]
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def decoded_digest(path, width):
    return answer_of(path, "-c:a", "pcm_" + RAW[width], "-f", "md5").strip().removeprefix("MD5=")


def has_length(path, seconds):
    """As far as lossy files can keep it: to a tenth of a second."""
    decoded = answer_of(path, "-f", "framecrc")
    rate = int(re.search(r"sample_rate 0: ([0-9]+)", decoded).group(1))
    frames = sum(int(row.split(",")[3]) for row in rows_of(decoded))
    return abs(frames / rate - seconds) < 0.1


def rows_of(answer):
    return [row for row in answer.splitlines() if row and not row.startswith("#")]


def packets(path):
    """Size and digest of each."""
    return [tuple(row.split(",")[-2:]) for row in rows_of(answer_of(path, "-c", "copy", "-f", "framemd5"))]


def require(is_right, path, what):
    if not is_right:
        raise SystemExit(f"{path}: {what}; nothing is compared with it")


def has_same_packets(one, other):
    ours, theirs = packets(one), packets(other)
    common = min(len(ours), len(theirs)) - LAST_PACKETS
    return common > 0 and abs(len(ours) - len(theirs)) < LAST_PACKETS and ours[:common] == theirs[:common]


class ExportRuns:
    """What each program does for one row, each into a file of its own."""

    def __init__(self, inputs, programs, export):
        self.inputs = inputs
        self.export = export
        self.source = Source(inputs, export)
        self.frames = inputs.seconds * export.rate
        job = [self.source.path, export.channels, export.rate, export.width, self.frames]
        self.jobs = {
            "project": lambda path: self.told(programs["hostwrite"], job, path, export.mode, export.format),
            "libsndfile": lambda path: self.told(programs["sndfilewrite"], job, path, export.sndfile, "-"),
            "libav": lambda path: self.told(programs["libavwrite"], job, path, export.muxer, export.encoder),
            "ffmpeg": self.ffmpeg,
        }

    def told(self, program, job, path, container, form):
        words = [program, *job, path, container, form, self.export.bit_rate]
        return line_and_whole([str(word) for word in words])

    def ffmpeg(self, path):
        export = self.export
        rate = ["-b:a", str(export.bit_rate)] if export.bit_rate else []
        depth = ["-bits_per_raw_sample", "24"] if export.width == 3 else []
        return whole_run(["ffmpeg", "-v", "error", "-nostdin", "-y", "-f", RAW[export.width], "-ar", str(export.rate),
                          "-ac", str(export.channels), "-stream_loop", "-1", "-i", self.source.path, "-t",
                          str(self.inputs.seconds), "-c:a", export.encoder, *rate, *depth, "-f", export.muxer,
                          path])

    def path(self, who):
        return os.path.join(self.inputs.folder, f"{who}.{self.export.extension}")

    def run(self, who):
        """Figures of one run; its file stays until the next."""
        self.drop(who)
        return self.jobs[who](self.path(who))

    def drop(self, who):
        if os.path.exists(self.path(who)):
            os.remove(self.path(who))

    def check(self, who):
        self.run(who)
        if not self.export.is_lossy:
            right = decoded_digest(self.path(who), self.export.width) == self.source.digest(self.frames)
            require(right, self.path(who), "does not hold the samples")
        else:
            require(has_length(self.path(who), self.inputs.seconds), self.path(who), "has another length")
        if self.export.is_lossy and who == "project":
            self.run("libav")
            right = has_same_packets(self.path(who), self.path("libav"))
            require(right, self.path(who), "has other packets than libav's")
        self.drop(who)


def alternate(run, rivals, rounds):
    """Runs of everybody, one behind the other in each round."""
    runs = {who: [] for who in ("project", *rivals)}
    for _ in range(rounds):
        for who, figures in runs.items():
            figures.append(run(who))
    return runs


def least(runs, what):
    return min(run[what] for run in runs)


def tell(table, name, bar, ours, theirs, what="cpu"):
    rounds = statistics.median(one[what] / other[what] for one, other in zip(ours, theirs))
    wall = least(ours, "seconds") / least(theirs, "seconds")
    table.tell(name, least(ours, what) / least(theirs, what), bar, least(ours, what), least(theirs, what),
               f"  median {rounds:.3f}, wall {wall:.3f}")


def tell_runs(table, name, runs, bars):
    rivals = {who: theirs for who, theirs in runs.items() if who != "project"}
    fastest = min(rivals, key=lambda who: least(rivals[who], "cpu"))
    for who, theirs in rivals.items():
        bar = bars.get("fastest") if who == fastest and "fastest" in bars else bars.get(who)
        tell(table, f"{name} / {who}", bar, runs["project"], theirs)


def export_rows(table, inputs, programs):
    for export in EXPORTS:
        name = "export " + export.name
        if table.skips(name):
            continue
        runs = ExportRuns(inputs, programs, export)
        everybody = ("project", *export.rivals)
        for who in everybody:
            runs.check(who)
        figures = alternate(runs.run, export.rivals, table.rounds)
        tell_runs(table, name, figures, export.bars)
        if export.format != "lpcm":
            # The codecs are loaded while the file is written, those of the rival before its clock starts.
            tell(table, name + " / libav, whole process", export.bars.get("libav"), figures["project"],
                 figures["libav"], "whole")
        for who in everybody:
            runs.drop(who)


@dataclass
class Convert:
    name: str
    extension: str
    options: list  # of tarvo
    rivals: dict  # their command in front of the two names
    bars: dict
    is_lossy: bool = False


FFMPEG = ["ffmpeg", "-v", "error", "-nostdin", "-y", "-i"]
CONVERTS = [
    Convert("WAV to AIFF", "aiff", [], {"sndfile-convert": (["sndfile-convert"], []), "ffmpeg": (FFMPEG, [])},
            {"sndfile-convert": 0.70, "ffmpeg": 0.40}),
    Convert("WAV to FLAC", "flac", [], {"flac": (["flac", "-s", "-5", "-o"], None), "ffmpeg": (FFMPEG, [])}, {}),
    Convert("WAV to MP3", "mp3", ["--bitrate", "128k", "--mode", "cbr"],
            {"lame": (["lame", "--quiet", "--cbr", "-b", "128"], []), "ffmpeg": (FFMPEG, ["-b:a", "128k"])}, {}, True),
    Convert("WAV to AAC", "m4a", ["--bitrate", "128k", "--mode", "abr"],
            {"ffmpeg": (FFMPEG, ["-b:a", "128k"])}, {}, True),
]


def convert_command(words, source, target):
    front, options = words
    # flac names its target first.
    return [*front, target, source] if options is None else [*front, source, *options, target]


def convert_rows(table, inputs, programs):
    """Whole processes, from a WAVE file of 16-bit stereo."""
    for convert in CONVERTS:
        name = "convert " + convert.name
        if table.skips(name):
            continue
        source = inputs.make("s16.wav", ["-c:a", "pcm_s16le"])
        commands = {"project": ([programs["tarvo"], "convert", "--quiet"], convert.options), **convert.rivals}
        path = {who: os.path.join(inputs.folder, f"{who}.{convert.extension}") for who in commands}

        def run(who):
            if os.path.exists(path[who]):
                os.remove(path[who])
            return whole_run(convert_command(commands[who], source, path[who]))

        for who in commands:
            run(who)
            if convert.is_lossy:
                require(has_length(path[who], inputs.seconds), path[who], "has another length")
            else:
                right = decoded_digest(path[who], 2) == decoded_digest(source, 2)
                require(right, path[who], "does not hold the samples")
        tell_runs(table, name, alternate(run, tuple(convert.rivals), table.rounds), convert.bars)
        for who in commands:
            os.remove(path[who])


def export_memory_rows(table, inputs, programs):
    """Peaks of whole processes; the blocks of the source are in all of them."""
    for export in EXPORTS:
        rival, bar = ("libsndfile", 2.0) if export.format == "lpcm" else ("libav", None)
        runs = ExportRuns(inputs, programs, export)
        table.row(f"peak memory export {export.name} / {rival}", bar, lambda: runs.run("project")["rss_kb"],
                  lambda: runs.run(rival)["rss_kb"], 3)
        runs.drop("project")
        runs.drop(rival)
