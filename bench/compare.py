"""Runs the measuring programs side by side and prints ratios, project / rival.

Every row is measured in rounds; in each round the programs run one behind the other, and the figure of
the row is the median of the rounds' ratios. Lower is better. Inputs are made afresh in the folder for
temporary files and read once before they count, so that they come from memory. How exports are compared
is told in exporting.py.
"""

import argparse
import os
import re
import shutil
import statistics
import sys
import tempfile

from exporting import convert_rows, export_memory_rows, export_rows
from measuring import Inputs, Table, line, whole, whole_cpu

PCM = [  # name, file, options, channels, rate, bars beside libsndfile and libav
    ("WAV 16-bit stereo", "s16.wav", ["-c:a", "pcm_s16le"], 2, 44100, 1.20, 0.35),
    ("WAV float stereo", "f32.wav", ["-c:a", "pcm_f32le"], 2, 44100, 1.20, 0.35),
    ("AIFF 16-bit stereo (swapped)", "s16.aiff", ["-c:a", "pcm_s16be"], 2, 44100, 0.55, None),
    ("WAV 24-bit stereo", "s24.wav", ["-c:a", "pcm_s24le"], 2, 44100, 0.35, None),
    ("WAV 24-bit 6 channels 96 kHz", "s24-6.wav", ["-c:a", "pcm_s24le"], 6, 96000, 0.60, None),
    ("WAV 32-bit integer stereo", "s32.wav", ["-c:a", "pcm_s32le"], 2, 44100, 0.60, None),
    ("WAV 16-bit 16 channels", "s16-16.wav", ["-c:a", "pcm_s16le"], 16, 48000, None, None),
]

COMPRESSED = [  # name, file, options
    ("AAC", "aac.m4a", ["-c:a", "aac", "-b:a", "128k"]),
    ("ADTS", "aac.aac", ["-c:a", "aac", "-b:a", "128k"]),
    ("MP3", "lame.mp3", ["-c:a", "libmp3lame", "-b:a", "128k"]),
    ("AC-3", "ac3.ac3", ["-c:a", "ac3", "-b:a", "192k"]),
    ("ALAC", "alac.m4a", ["-c:a", "alac"]),
    ("FLAC", "flac.flac", ["-c:a", "flac"]),
]


def read_rows(table, inputs, programs):
    for name, file, options, channels, rate, by_sndfile, by_libav in PCM:
        path = inputs.make(file, options, channels, rate)
        ours = lambda: line([programs["tarvo"], "bench-read", path])["seconds"]
        table.row(name + " / libsndfile", by_sndfile, ours,
                  lambda: line([programs["sndfile"], "read", path])["seconds"])
        table.row(name + " / libav", by_libav, ours,
                  lambda: line([programs["libav"], "read", path])["seconds"])

    stereo = inputs.make("s16.wav", ["-c:a", "pcm_s16le"])
    sixteen = inputs.make("s16-16.wav", ["-c:a", "pcm_s16le"], 16, 48000)

    def per_sample(path):
        run = line([programs["tarvo"], "bench-read", path])
        return run["seconds"] / (run["frames"] * run["channels"])
    table.row("16 channels / stereo, per sample", 2.0, lambda: per_sample(sixteen),
              lambda: per_sample(stereo))

    for name, file, options in COMPRESSED:
        path = inputs.make(file, options)
        table.row(name + " CPU / libav", 1.03, lambda: line([programs["tarvo"], "bench-read", path])["cpu"],
                  lambda: line([programs["libav"], "read", path])["cpu"])
        # The codecs are loaded while the file is read, those of the rival before its clock starts.
        table.row(name + " CPU / libav, whole process", 1.03,
                  lambda: whole_cpu([programs["tarvo"], "bench-read", path]),
                  lambda: whole_cpu([programs["libav"], "read", path]))
        table.row(name + " / ffmpeg -f null", None, lambda: whole([programs["tarvo"], "bench-read", path]),
                  lambda: whole(["ffmpeg", "-v", "error", "-threads", "1", "-i", path, "-f", "null", "-"]),
                  max(3, table.rounds // 3))


def open_rows(table, inputs, programs):
    rounds = "40"
    ours = lambda path: lambda: line([programs["host"], "open", rounds, path])["seconds"]
    for name, file, options, channels, rate, by_sndfile, _ in PCM[:4]:
        path = inputs.make(file, options, channels, rate, 2)
        if by_sndfile:
            table.row(f"open {name} / libsndfile", 4.0, ours(path),
                      lambda: line([programs["sndfile"], "open", rounds, path])["seconds"])
    for name, file, options in COMPRESSED:
        path = inputs.make(file, options, seconds=2)
        table.row(f"open {name} / libav", 0.5, ours(path),
                  lambda: line([programs["libav"], "open", rounds, path])["seconds"])
    for name, file, options in COMPRESSED:
        short = inputs.make(file, options, seconds=60)
        long = inputs.make(file, options, seconds=1200)
        bar = 1.25 if name in ("MP3", "ADTS", "AC-3", "FLAC") else None
        table.row(f"open {name}, 20 minutes / 1 minute", bar, ours(long), ours(short))

    folder = os.path.join(inputs.folder, "many")
    os.makedirs(folder, exist_ok=True)
    many = []
    for index in range(200):
        source = inputs.make(*((COMPRESSED[index % 6][1], COMPRESSED[index % 6][2])), seconds=2)
        many.append(os.path.join(folder, f"{index}-{os.path.basename(source)}"))
        shutil.copy(source, many[-1])
    table.row("open 200 small files / libav", 0.5,
              lambda: line([programs["host"], "open", "1", *many])["seconds"],
              lambda: line([programs["libav"], "open", "1", *many])["seconds"])
    table.row("info of 200 small files / ffprobe each", None,
              lambda: whole([programs["tarvo"], "info", *many]),
              lambda: whole(["sh", "-c", 'for f; do ffprobe -v error -show_streams "$f"; done', "-", *many]), 1)


def process_rows(table, inputs, programs):
    wav = inputs.make("s16.wav", ["-c:a", "pcm_s16le"], seconds=2)
    rounds = table.rounds * 3
    table.row("tarvo info WAV / sndfile-info", 2.5, lambda: whole([programs["tarvo"], "info", wav]),
              lambda: whole(["sndfile-info", wav]), rounds)
    for name, file, options in COMPRESSED:
        path = inputs.make(file, options, seconds=2)
        table.row(f"tarvo info {name} / ffprobe", 0.5, lambda: whole([programs["tarvo"], "info", path]),
                  lambda: whole(["ffprobe", "-v", "error", "-show_streams", path]))


def start_rows(table, inputs, programs):
    encoders = lambda: whole(["ffmpeg", "-hide_banner", "-encoders"])
    start = lambda *parts: lambda: sum(line([programs["host"], "start"])[part] for part in parts)
    table.row("selector 0 / ffmpeg -encoders", 0.10, start("first"), encoders)
    table.row("loading and selector 0 / ffmpeg -encoders", 0.60,
              lambda: whole([programs["host"], "start"]), encoders)
    table.row("second selector 0 / ffmpeg -encoders", 0.01, start("second"), encoders)
    if not table.only:
        figures = line([programs["catalogue"]])
        print(f"GetEncodableBitrates: {figures['kept']:.0f} ns kept, {figures['asked']:.0f} ns asked with a source")


def memory_rows(table, inputs, programs):
    peak = lambda *command: lambda: line(list(command))["rss_kb"]
    for name, file, options, channels, rate, _, _ in PCM[:4]:
        path = inputs.make(file, options, channels, rate)
        table.row(f"peak memory {name} / libsndfile", 2.0, peak(programs["tarvo"], "bench-read", path),
                  peak(programs["sndfile"], "read", path), 3)
    for name, file, options in COMPRESSED:
        path = inputs.make(file, options)
        table.row(f"peak memory {name} / libav", 0.75, peak(programs["tarvo"], "bench-read", path),
                  peak(programs["libav"], "read", path), 3)
    for name, file, options in [PCM[0][:3]] + COMPRESSED:
        if table.only and not re.search(table.only, "memory growth " + name):
            continue
        short = inputs.make(file, options, seconds=60)
        long = inputs.make(file, options, seconds=3600)
        growth = [peak(programs["tarvo"], "bench-read", long)() - peak(programs["tarvo"], "bench-read", short)()
                  for _ in range(3)]
        limit = 4096 if file.endswith(".m4a") else 1024
        table.tell(f"memory growth {name}, 1 to 60 min, of {limit} KiB", statistics.median(growth) / limit, 1.0,
                   statistics.median(growth), limit)
        os.remove(long)


PARTS = {"read": read_rows, "open": open_rows, "process": process_rows, "start": start_rows, "memory": memory_rows,
         "export": export_rows, "convert": convert_rows, "export-memory": export_memory_rows}
WRITING_PARTS = ("export", "convert", "export-memory")


def memory_folder():
    """Where disks do not take part; none means the usual folder for temporary files."""
    return "/dev/shm" if os.access("/dev/shm", os.W_OK) else None


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--bin", required=True)
    parser.add_argument("--seconds", type=int, default=300, help="of audio that is read")
    parser.add_argument("--export-seconds", type=int, default=600, help="of audio that is written")
    parser.add_argument("--rounds", type=int, default=9)
    parser.add_argument("--only", help="rows whose name holds this expression")
    parser.add_argument("--parts", default=",".join(PARTS), help="of " + ",".join(PARTS))
    arguments = parser.parse_args()

    program = lambda name: os.path.join(arguments.bin, name)
    programs = {"tarvo": program("tarvo"), "host": program("hostbench"), "libav": program("libavbench"),
                "sndfile": program("sndfilebench"), "catalogue": program("cataloguebench"),
                "hostwrite": program("hostwrite"), "libavwrite": program("libavwrite"),
                "sndfilewrite": program("sndfilewrite")}
    with tempfile.TemporaryDirectory() as folder, tempfile.TemporaryDirectory(dir=memory_folder()) as memory:
        read = Inputs(folder, arguments.seconds)
        written = Inputs(memory, arguments.export_seconds)
        table = Table(arguments.rounds, arguments.only)
        for name in arguments.parts.split(","):
            PARTS[name](table, written if name in WRITING_PARTS else read, programs)
    print(f"{table.missed} over their bars")
    return 0


if __name__ == "__main__":
    sys.exit(main())
