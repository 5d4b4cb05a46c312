"""python -m dsp spectrum on a generated WAV file and a CSV file."""

import os
import re
import subprocess
import sys
import wave

import numpy as np

from dsp.cli import main

RATE, N = 48000, 65536
TONES = [(1000.0, 0.5), (3141.3, 0.25)]  # frequency, amplitude: -9.031 dB and -15.051 dB
NOISE = 1e-3  # rms: 10 log10(1e-6 / 24000) = -103.80 dB/Hz


def recording(n, rate, seed=7):
    t = np.arange(n) / rate
    x = sum(a * np.cos(2 * np.pi * f * t + 0.3) for f, a in TONES)
    return x + NOISE * np.random.default_rng(seed).standard_normal(n)


def figures(out):
    tones = [tuple(map(float, m)) for m in re.findall(r"frequency (\S+) Hz, level (\S+) dB", out)]
    return tones, float(re.search(r"noise density: (\S+) dB/Hz", out).group(1))


def check(out, freq_tol, level_tol, density_tol):
    tones, density = figures(out)
    assert len(tones) == len(TONES)
    for (f, level), (want_f, a) in zip(tones, TONES):
        assert abs(f - want_f) <= freq_tol and abs(level - 20 * np.log10(a / np.sqrt(2))) <= level_tol
    assert abs(density - 10 * np.log10(NOISE**2 / (RATE / 2))) <= density_tol


def test_wav_with_plot(tmp_path, capsys):
    path, png = str(tmp_path / "tones.wav"), tmp_path / "spectrum.png"
    with wave.open(path, "wb") as f:
        f.setnchannels(2)
        f.setsampwidth(2)
        f.setframerate(RATE)
        pcm = np.round(np.c_[np.zeros(N), recording(N, RATE)] * 32768).astype("<i2")
        f.writeframes(pcm.tobytes())
    assert main(["spectrum", path, "--column", "1", "--plot", str(png)]) == 0
    out = capsys.readouterr().out
    assert f"signal: {N} samples at 48000 Hz" in out and "window: Flattop, ENBW 3.8194 bins" in out
    check(out, 0.005, 0.02, 0.3)
    assert png.read_bytes()[:8] == b"\x89PNG\r\n\x1a\n" and png.stat().st_size > 10000


def test_csv_averaged(tmp_path, capsys):
    path = tmp_path / "tones.csv"
    x = recording(4 * 8192, RATE)
    np.savetxt(path, np.c_[np.arange(len(x)) / RATE, x], delimiter=",", header="time,value")
    assert main(["spectrum", str(path), "--rate", "48000", "--column", "1", "--average", "4", "--window", "hann"]) == 0
    out = capsys.readouterr().out
    assert "4 averages of 8192 samples" in out
    check(out, 0.005, 0.05, 0.3)


def test_module_entry_and_failures(tmp_path):
    path = tmp_path / "x.txt"
    path.write_text("# one tone\n" + "\n".join(map(str, recording(4096, RATE))))
    env = dict(os.environ, PYTHONPATH=os.path.dirname(os.path.dirname(__file__)))
    run = lambda *a: subprocess.run([sys.executable, "-m", "dsp", "spectrum", str(path), *a], env=env,
                                    capture_output=True, text=True)
    assert "tone 1: frequency 1000.0" in run("--rate", "48000").stdout
    for args, message in [((), "needs --rate"), (("--rate", "1", "--window", "nope"), "nope"),
                          (("--rate", "1", "--average", "1000"), "too few")]:
        r = run(*args)
        assert r.returncode == 1 and message in r.stderr
