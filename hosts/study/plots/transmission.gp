# Transmission of the ion guide against its voltage, mass by mass.
set terminal svg size 720,420 font "sans-serif,13" background "white"
set output picture
set grid lc rgb "#dddddd"
set border 3
set tics nomirror
set key noenhanced
set key outside right center title "m/z"
set xlabel "RF voltage, V"
set ylabel "fraction passed on"
set xrange [0:160]
set yrange [0:1]
plot for [i=2:8] data using 1:i with lines lw 2 title word("91 159 363 499 907 1179 1791", i - 1)
