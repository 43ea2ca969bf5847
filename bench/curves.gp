# Plots cost against the size of a call and against the density of start codes:
# gnuplot -e "folder='...'" curves.gp
set terminal svg size 760,440 font 'sans-serif,12' background rgb 'white'
set key below
set grid
set logscale x
set logscale y
set format x '%.0s%c'
set ylabel 'GB/s'

set output 'docs/benchmarks-size.svg'
set xlabel 'bytes per call (over 16 MB or more; units of 40 KB)'
plot for [i=2:7] folder.'/size.dat' using 1:i with linespoints pointtype 7 pointsize 0.4 title columnheader(i)

set output 'docs/benchmarks-density.svg'
set xlabel 'bytes between start codes (over 16 MB)'
plot for [i=2:5] folder.'/density.dat' using 1:i with linespoints pointtype 7 pointsize 0.4 title columnheader(i)
