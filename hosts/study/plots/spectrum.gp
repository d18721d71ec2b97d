# A whole spectrum at the voltage that the instrument starts with.
set terminal svg size 720,420 font "sans-serif,13" background "white"
set output picture
set grid lc rgb "#dddddd"
set border 3
set tics nomirror
set key noenhanced
unset key
set logscale y
set xlabel "flight time, us"
set ylabel "counts in a bin of 0.25 ns (largest in 50 ns)"
set xrange [12:72]
set yrange [200:3e6]
set format y "10^{%T}"
plot data using 1:2 with lines lw 1
