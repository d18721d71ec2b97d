# The true error of a peak in the middle of the band, over the mass axis.
set terminal svg size 720,420 font "sans-serif,13" background "white"
set output picture
set grid lc rgb "#dddddd"
set border 3
set tics nomirror
set key noenhanced
set key right top
set logscale x
set xlabel "m/z"
set ylabel "true error, ppm"
set xrange [90:1800]
set xtics (100, 200, 500, 1000, 1790)
plot for [i=2:6] data using 1:i with lines lw 1 lc rgb "#c0392b" \
       title (i == 2 ? "traditional, five seeds" : ""), \
     for [i=7:11] data using 1:i with lines lw 1 lc rgb "#2471a3" \
       title (i == 7 ? "abundance-immune, five seeds" : "")
