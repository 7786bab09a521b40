#!/usr/bin/python3
"""The mean power spectrum of a WAV file's left channel, as a script of the usual kind computes it: blocks of 16384
samples, Hann window, double precision. Usage: mean_spectrum.py WAV"""

import sys

import numpy
import scipy.fft
import scipy.io.wavfile
import scipy.signal

POINTS = 16384
TOGETHER = 64  # blocks at a time: they stay in the cache

rate, samples = scipy.io.wavfile.read(sys.argv[1], mmap=True)
left = samples[:, 0]
window = scipy.signal.windows.hann(POINTS, sym=False)
total = numpy.zeros(POINTS // 2 + 1)
blocks = len(left) // POINTS
for first in range(0, blocks, TOGETHER):
    last = min(first + TOGETHER, blocks)
    part = left[first * POINTS : last * POINTS].reshape(-1, POINTS) * window
    total += (numpy.abs(scipy.fft.rfft(part)) ** 2).sum(axis=0)
level = 10 * numpy.log10(total / blocks / (32768 * window.sum() / 2) ** 2)
peak = level.argmax()
print(f"{blocks} blocks, peak {peak * rate / POINTS:.2f} Hz {level[peak]:.2f} dBFS")
