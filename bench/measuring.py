"""What all rows share: inputs, running a program and taking its figures, and the table that is printed."""

import json
import os
import re
import statistics
import subprocess
import time

SOURCE_SECONDS = 20  # repeated for longer inputs
SOURCE = ("aevalsrc=exprs='0.4*sin(2*PI*220*t)+0.1*random({c})-0.05|0.3*sin(2*PI*330*t)+0.1*random(1{c})-0.05'"
          ":s={rate}:d={seconds}")


def ffmpeg(*arguments):
    subprocess.run(["ffmpeg", "-v", "error", "-nostdin", "-y", *arguments], check=True)


class Inputs:
    """Makes each input once."""

    def __init__(self, folder, seconds):
        self.folder = folder
        self.seconds = seconds

    def source(self, channels, rate):
        path = os.path.join(self.folder, f"source-{channels}-{rate}.wav")
        if not os.path.exists(path):
            pair = SOURCE.format(c=0, rate=rate, seconds=SOURCE_SECONDS)
            repeat = "|".join(f"c{i}=c{i % 2}" for i in range(channels))
            ffmpeg("-f", "lavfi", "-i", pair, "-af", f"pan={channels}c|{repeat}", "-c:a", "pcm_s24le",
                   "-rf64", "auto", path)
        return path

    def make(self, name, options, channels=2, rate=44100, seconds=None):
        seconds = seconds or self.seconds
        path = os.path.join(self.folder, f"{seconds}-{name}")
        if not os.path.exists(path):
            ffmpeg("-stream_loop", "-1", "-i", self.source(channels, rate), "-t", str(seconds), *options, path)
        return path


def line(command):
    """What a measuring program says of its run."""
    answer = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    return json.loads(answer.strip().splitlines()[-1])


def line_and_whole(command):
    """The same, with the processor seconds of the whole process as "whole"."""
    process = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
    answer = process.stdout.read()
    process.stdout.close()
    seconds = end_of(process, command)
    return {**json.loads(answer.strip().splitlines()[-1]), "whole": seconds}


def end_of(process, command):
    """Processor seconds of a process that has nothing left to say, loading included."""
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise subprocess.CalledProcessError(process.returncode, command)
    return usage.ru_utime + usage.ru_stime


def whole(command):
    """Seconds of a whole process."""
    start = time.perf_counter()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return time.perf_counter() - start


def whole_cpu(command):
    """Processor seconds of a whole process, loading included."""
    return whole_run(command)["cpu"]


def whole_run(command):
    """Processor seconds and seconds of a whole process, as a measuring program would tell them."""
    start = time.perf_counter()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return {"cpu": end_of(process, command), "seconds": time.perf_counter() - start}


class Table:
    def __init__(self, rounds, only):
        self.rounds = rounds
        self.only = only
        self.missed = 0
        print(f"{'what':44} {'ratio':>7} {'bar':>6}   {'project':>10} {'rival':>10}")

    def skips(self, name):
        return bool(self.only) and not re.search(self.only, name)

    def row(self, name, bar, ours, theirs, rounds=None):
        """ours and theirs measure one run each; their figures are compared round by round."""
        if self.skips(name):
            return
        ratios, project, rival = [], [], []
        ours()  # warms the file up
        for _ in range(rounds or self.rounds):
            project.append(ours())
            rival.append(theirs())
            ratios.append(project[-1] / rival[-1])
        self.tell(name, statistics.median(ratios), bar, statistics.median(project),
                  statistics.median(rival))

    def tell(self, name, value, bar, project, rival, note=""):
        verdict = note
        if bar is not None and value > bar:
            verdict += "  over its bar"
            self.missed += 1
        shown = f"{bar:6.2f}" if bar is not None else "     -"
        print(f"{name:44} {value:7.3f} {shown}   {project:10.6g} {rival:10.6g}{verdict}", flush=True)
